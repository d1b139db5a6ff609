// SPDX-License-Identifier: GPL-3.0-or-later
// The sound cards over a real sound server that works, hangs, dies or is missing.
#include <atomic>
#include <mutex>

#include "adapters/desktop/qt_event_loop.h"
#include "adapters/sound/sound_cards.h"
#include "integration/sound/real_server.h"
#include "platform/wave.h"

namespace orven::test {
namespace {

constexpr int kSecond = 2 * kSampleRate;  // bytes

/// Returns one second of noise.
QByteArray Noise() {
  QByteArray noise;
  for (unsigned i = 0, seed = 1; i < kSecond; ++i)
    noise += char((seed = seed * 1'103'515'245U + 12'345U) >> 24U);
  return noise;
}
const QByteArray kNoise = Noise();

/// Plays the noise `times` times and keeps what is recorded.
struct Tape final : AudioSource, AudioSink {
  explicit Tape(int times = 1) : given(kNoise.repeated(times)) {}

  bool Read(std::span<std::int16_t> block) override {
    const auto size = qsizetype(block.size_bytes());
    if (played + size > given.size()) return !(ended = true);
    std::memcpy(block.data(), given.constData() + played, block.size_bytes());
    played += size;
    return true;
  }
  void Gone() override { gone = ended = true; }
  bool Live() const override { return live; }
  void Write(std::span<const std::int16_t> block) override {
    const std::lock_guard lock(mutex);
    heard.append(reinterpret_cast<const char*>(block.data()), qsizetype(block.size_bytes()));
  }
  bool Heard(const QByteArray& part) {
    const std::lock_guard lock(mutex);
    return heard.contains(part);
  }

  const QByteArray given;
  std::atomic<qsizetype> played = 0;
  std::atomic<bool> ended = false, gone = false;
  bool live = false;
  std::mutex mutex;
  QByteArray heard;
};

/// The sound cards as the program uses them.
struct Desk {
  Desk() { server.Start(); }

  AudioDevice& Card(int number) { return *cards.Find(number); }
  void WaitForCards(const std::vector<std::string>& names) {
    EXPECT_TRUE(Eventually([&] { return cards.Names() == names; })) << names.back();
  }
  /// Plays on `card` and checks that all of it is heard on `output`.
  void Plays(int card, const QString& output = "desk") {
    Tape tape;
    const auto other = server.Other("parec", "mic_" + output);
    server.HearMore(*other);
    EXPECT_EQ(Card(card).StartPlay(tape), kWaveOk);
    EXPECT_EQ(Card(card).StartPlay(tape), kWaveBusy);
    EXPECT_TRUE(Eventually([&] { return tape.ended && !server.Plays(); }));
    server.HearMore(*other);
    EXPECT_TRUE(other->readAll().contains(kNoise)) << output.toStdString() << told;
    other->kill();
    other->waitForFinished();
  }
  /// Checks that the microphone of `output` is recorded from `card`.
  void Takes(int card, const QString& output = "desk") {
    Tape tape;
    StartTake(card, tape);
    EXPECT_EQ(Card(card).StartRecord(tape), kWaveBusy);
    Say(output);
    EXPECT_TRUE(Eventually([&] { return tape.Heard(kNoise); })) << output.toStdString() << told;
    Card(card).StopRecord();
    EXPECT_TRUE(Eventually([&] { return !server.Listed("source-outputs").contains("native"); }));
  }
  void StartPlay(int card, Tape& tape) {
    EXPECT_EQ(Card(card).StartPlay(tape), kWaveOk);
    EXPECT_TRUE(Eventually([&] { return tape.played > 0; })) << told;
  }
  void StartTake(int card, Tape& tape) {
    EXPECT_EQ(Card(card).StartRecord(tape), kWaveOk);
    EXPECT_TRUE(Eventually([&] { return tape.Heard(QByteArray(2, '\0')); })) << told;
  }
  void Say(const QString& output) {
    const auto other = server.Other("pacat", output);
    other->write(kNoise);
    other->closeWriteChannel();
    EXPECT_TRUE(other->waitForFinished(60'000));
  }
  /// Waits for one report for each reason and checks that there is no other.
  void GivesUp(const std::vector<std::string>& reasons) {
    const auto reports = [this] { return std::size_t(std::ranges::count(told, '|')); };
    EXPECT_TRUE(Eventually([&] { return reports() >= reasons.size(); }));
    EXPECT_EQ(reports(), reasons.size());
    for (const auto& reason : reasons) EXPECT_NE(told.find(reason), std::string::npos) << reason << told;
    told.clear();
  }
  int count = 1;
  char* arguments[1] = {};
  QCoreApplication application{count, arguments};
  RealServer server;
  std::string told;
  QtEventLoop loop;
  SoundCards cards{loop,
                   [this](const std::string& text) { loop.Post([this, text] { told += text + '|'; }); }};
};

TEST(SoundServerTest, CardsThatComeAndGoKeepTheirNumbersAndTheirMicrophones) {
  Desk desk;
  desk.WaitForCards({"Default output", "desk"});
  desk.server.PlugIn("headset", "usb-3");
  desk.WaitForCards({"Default output", "desk", "headset"});
  desk.server.Unplug("desk");
  desk.WaitForCards({"Default output", "", "headset"});
  Tape none(100), first(100), second(100);
  EXPECT_EQ(desk.Card(1).StartPlay(none), kWaveOk);
  desk.GivesUp({"There is no sound output number 1 now."});
  EXPECT_EQ(desk.cards.Find(3), nullptr);
  desk.server.PlugIn("desk");
  desk.WaitForCards({"Default output", "desk", "headset"});
  for (const char* output : {"headset", "desk"}) {  // card 0 follows the desktop's choice
    desk.server.Ask({"set-default-sink", output});
    desk.Plays(0, output);
  }
  desk.server.PlugIn("studio");
  desk.server.Ask({"set-default-source", "mic_studio"});
  desk.Takes(2, "headset");
  for (const int card : {0, 1}) desk.Takes(card, "studio");  // they have no microphone
  Tape live;
  live.live = true;
  desk.StartPlay(0, live);
  EXPECT_TRUE(Eventually([&] { return live.ended && !live.gone; }));
  desk.StartPlay(2, first);
  EXPECT_EQ(desk.cards.Beside().Find(2)->StartPlay(second), kWaveOk);
  desk.Card(2).StopPlay();
  EXPECT_TRUE(Eventually([&] { return desk.server.Listed("sink-inputs").count('\n') == 1; }));
  desk.server.Unplug("headset");
  desk.GivesUp({"\"headset\" was disconnected while it was playing."});
  EXPECT_TRUE(none.gone && second.gone && !first.gone);
}

TEST(SoundServerTest, AMicrophoneThatIsUnpluggedOrRefusedEndsOnlyTheRecording) {
  Desk desk;
  std::vector<QByteArray> listeners;
  do {  // until the microphone accepts no more
    listeners.push_back(desk.server.Ask({"load-module", "module-remap-source", "master=mic_desk",
                                         QString("source_name=listener%1").arg(listeners.size())}));
  } while (!listeners.back().isEmpty());
  desk.server.Ask({"set-default-source", "mic_desk"});
  Tape refused, cut, none;
  EXPECT_EQ(desk.Card(0).StartRecord(refused), kWaveOk);
  desk.GivesUp({"microphone \"mic_desk\" could not be opened."});
  for (const auto& listener : listeners) desk.server.Ask({"unload-module", listener.trimmed()});

  desk.server.PlugIn("room");
  desk.server.Ask({"set-default-source", "mic_room"});
  desk.StartTake(0, cut);
  desk.Say("room");
  desk.server.Unplug("mic_room");
  desk.GivesUp({"microphone \"mic_room\" was disconnected"});
  EXPECT_TRUE(cut.Heard(kNoise.first(kSecond / 2)));
  desk.server.Unplug("mic_desk");
  EXPECT_EQ(desk.Card(0).StartRecord(none), kWaveOk);  // finds no microphone; the next start is refused
  desk.GivesUp({"There is no microphone to record from."});
  EXPECT_EQ(desk.Card(0).StartRecord(none), kWaveNoDevice);
  desk.server.PlugIn("room");
  EXPECT_TRUE(Eventually([&] { return desk.Card(0).StartRecord(none) == kWaveOk; }));
  desk.server.Hang();
}

TEST(SoundServerTest, AServerThatHangsOrDiesEndsAllSoundAndMayReturn) {
  Desk desk;
  desk.WaitForCards({"Default output", "desk"});
  Tape plays[4]{Tape(100), Tape(100), Tape(100), Tape(100)}, takes[2];
  desk.StartTake(0, takes[0]);
  desk.Say("desk");
  for (const int card : {0, 1}) desk.StartPlay(card, plays[card]);
  desk.server.Hang();
  desk.Card(0).StopPlay();
  EXPECT_EQ(desk.Card(0).StartPlay(plays[2]), kWaveOk);
  desk.GivesUp({"playing on sound card 0 was stopped", "playing on sound card 1 was stopped",
                "the recording was stopped"});
  EXPECT_TRUE(!plays[0].gone && plays[1].gone && plays[2].gone && takes[0].Heard(kNoise.first(kSecond / 2)));
  desk.server.Hang(false);
  desk.Takes(0);
  desk.StartTake(0, takes[1]);
  desk.StartPlay(0, plays[3]);
  desk.server.End();
  desk.GivesUp({"\"desk\"", "\"mic_desk\""});
  EXPECT_TRUE(plays[3].gone);
  EXPECT_EQ(desk.Card(0).StartPlay(plays[0]), kWaveOk);
  desk.GivesUp({"There is no sound server."});
  desk.server.Start();
  desk.Plays(0);
  desk.server.End();  // while nothing plays or records
  desk.server.Start();
  desk.Takes(0);
}

}  // namespace
}  // namespace orven::test
