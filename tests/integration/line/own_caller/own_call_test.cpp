// SPDX-License-Identifier: GPL-3.0-or-later
#include <gmock/gmock.h>

#include <cmath>
#include <filesystem>
#include <numbers>
#include <random>

#include "adapters/line/config/line_settings.h"
#include "adapters/line/own_caller/sip_own_caller.h"
#include "adapters/line/sip/sip_line.h"
#include "checkup/own_call.h"
#include "integration/line/sip/sip_line_test.h"
#include "support/desk/desk.h"

namespace orven::test {
namespace {

using testing::HasSubstr;

/// Returns something like speech: a voice whose pitch wanders, in syllables.
std::vector<std::int16_t> Voice(unsigned seed, double seconds) {
  std::minstd_rand random(seed);
  std::vector<std::int16_t> samples;
  double phase = 0, pitch = 140;
  for (int i = 0; i < seconds * kSampleRate; ++i) {
    if (i % 800 == 0) pitch = 90 + static_cast<double>(random() % 100);
    phase += 2 * std::numbers::pi * pitch / kSampleRate;
    double sample = 0;
    for (int harmonic = 1; harmonic < 9; ++harmonic) sample += std::sin(harmonic * phase) / harmonic;
    samples.push_back(static_cast<std::int16_t>(5000 * sample * std::abs(std::sin(i * 0.001))));
  }
  return samples;
}

/// A line with these keys of lines.ini, and what the steps are to say.
struct Case {
  const char* name;
  std::map<std::string, std::string> keys;
  const char* spoil = "no file";  ///< a file that is missing
  const char* said = "Done Done Done Done Done Done Done ";
};

std::string ToText(const OwnCall::Steps& steps) {
  std::string text;
  for (const auto& step : steps)
    text += step.state == OwnCallProgress::State::Done ? "Done " : '[' + step.words.English() + "] ";
  return text;
}

TEST(OwnCall, ProvesEveryStepOverTheRealTelephoneStackAndSaysWhatFails) {
  const Case cases[] = {
      {"G.711", {}},
      {"encrypted G.722", {{"codecs", "G722"}, {"srtp", "yes"}}},
      {"Opus", {{"codecs", "opus"}}},
      {"no greeting",
       {},
       "Greets/Holiday.wav",
       "Done [The greeting cannot be read: choose another one.] Done Done Done Done Done "},
      {"no beep",
       {},
       "beep.wav",
       "Done Done [The caller hears no beep: is there a file beep.wav?] Done Done Done Done "},
  };
  const ScratchFolder assets;
  PutWave(assets / "Sentence.wav", Voice(7, 1.6));
  for (const auto& [name, keys, spoil, said] : cases) {
    SCOPED_TRACE(name);
    LineStates lines(1);
    lines[0].section = {.name = "Home", .type = "sip", .values = keys};
    lines[0].section.values.try_emplace("listen", "127.0.0.1:" + std::to_string(FreePort()));
    Desk desk("\"NumOfRing\"=\"1\"\n", MakeSipLine(SipSettingsOf(lines[0].section, assets.Path())));
    PutWave(desk.home / "Greets/Holiday.wav", Voice(1, 1.2));
    PutWave(desk.home / "beep.wav", Voice(2, 0.4));
    std::filesystem::remove(desk.home / spoil);
    SipOwnCaller caller(desk.loop, lines, assets.Path(), assets / "Sentence.wav");
    OwnCall call(desk.Machine().ForOwnCall(caller), [] {});
    EXPECT_THAT(call.Obstacle().English(), HasSubstr("The line is off"));
    desk.Start();
    EXPECT_EQ(call.Obstacle().English(), "");
    QTimer pull;  // the sound card plays
    QObject::connect(&pull, &QTimer::timeout, [&desk] { (void)desk.card.Pull(); });
    pull.start(20);
    call.Start();
    EXPECT_TRUE(QTest::qWaitFor([&call] { return !call.Running(); }, 30'000));
    EXPECT_EQ(ToText(call.Progress()), said);
    EXPECT_EQ(desk.Cell(1, 6).toStdString() + desk.Cell(1, 5).toStdString(), "ORVENCheck-up");
  }
}

}  // namespace
}  // namespace orven::test
