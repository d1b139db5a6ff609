// SPDX-License-Identifier: GPL-3.0-or-later
#include <sys/resource.h>

#include <QProcessEnvironment>
#include <QRegularExpression>
#include <cmath>
#include <cstring>

#include "adapters/channel/local_exchange.h"
#include "adapters/desktop/qt_event_loop.h"
#include "integration/sound/real_server.h"

namespace orven::test {
namespace {

constexpr int kLong = 1'000'000;  // bytes of text, which keep the helper busy for seconds

std::string LongText(int size) {
  return QString("Please leave a message after the tone, and I will call you back.\r\n")
      .repeated(size / 66)
      .toStdString();
}

/// Returns the seconds from the first to the last sound in 16-bit samples.
double Length(const QByteArray& bytes, int rate) {
  std::vector<std::int16_t> samples(static_cast<std::size_t>(bytes.size()) / 2);
  std::memcpy(samples.data(), bytes.data(), samples.size() * 2);
  const auto loud = [](std::int16_t sample) { return std::abs(sample) > 650; };
  const auto first = std::ranges::find_if(samples, loud);
  const auto last = std::find_if(samples.rbegin(), samples.rend(), loud).base();
  return static_cast<double>(last - first) / rate;
}

/// A real helper on the real link.
struct SpeechTest : testing::Test, DataExchangeEvents {
  SpeechTest() { exchange.SetEvents(this); }

  void DataArrival(const std::string& text) override { arrived = QString::fromStdString(text); }
  void LinkLost() override { ++lost; }

  /// Starts a helper that cannot make a file larger than `most_bytes`.
  QProcess& Start(const char* locale = "C.UTF-8", rlim_t most_bytes = RLIM_INFINITY) {
    auto environment = QProcessEnvironment::systemEnvironment();
    environment.insert("ORVEN_CHANNEL", QString::fromStdString(exchange.Listen()));
    environment.insert("LC_ALL", locale);
    auto& helper = *helpers.emplace_back(std::make_unique<QProcess>());
    helper.setProcessEnvironment(environment);
    helper.setChildProcessModifier(
        [limit = rlimit{most_bytes, most_bytes}] { ::setrlimit(RLIMIT_FSIZE, &limit); });
    helper.start(TTS_PROGRAM, {"-gc"});
    EXPECT_TRUE(exchange.OpenCheck(60));
    return helper;
  }
  /// Waits until `helper` has ended and returns its error messages.
  static std::string Ended(QProcess& helper, int code = 0) {
    EXPECT_TRUE(Eventually([&] { return helper.state() == QProcess::NotRunning; }));
    EXPECT_TRUE(helper.exitStatus() == QProcess::NormalExit && helper.exitCode() == code);
    // Newer versions of Qt say there that a locale is not installed.
    static const QRegularExpression locale("Detected locale.*more information\\.\n",
                                           QRegularExpression::DotMatchesEverythingOption);
    return QString::fromUtf8(helper.readAllStandardError()).remove(locale).toStdString();
  }
  void Unload(QProcess& helper) {
    Send("ULD:");
    EXPECT_EQ(Ended(helper), "");
  }
  void Send(const std::string& text) { ASSERT_TRUE(exchange.Send(text)) << text.substr(0, 80); }
  /// Asks for `text` in the file `name` and returns its path.
  std::string Write(const std::string& name, const std::string& text) {
    Send("SFS:" + (folder / name));
    Send("STW:" + text);
    return folder / name;
  }
  /// Returns the answer to GVC, which comes after everything requested before has been done.
  QStringList Voices() {
    arrived.clear();
    Send("GVC:");
    EXPECT_TRUE(Eventually([&] { return arrived.startsWith("GVCS:"); }));
    return arrived.mid(5).split("\r\n");
  }
  /// Waits for the WAV file, which must be complete when it appears, and returns its size in bytes.
  static std::size_t Size(const std::string& path) {
    EXPECT_TRUE(Eventually([&] { return std::filesystem::exists(path); })) << path;
    const auto content = ContentOf(path) + std::string(24, '\0');
    std::uint32_t stated = 0;
    std::memcpy(&stated, content.data() + 4, sizeof stated);
    EXPECT_EQ(content.size() - 24, stated + 8U) << path;
    EXPECT_EQ(content[22], 1) << "channel";
    return stated;
  }

  /// Returns how long `text` sounds in a file written by the helper.
  double Spoken(const std::string& text) {
    const auto path = Write(std::to_string(folder.Count("")), text);
    Size(path);
    return Length(QByteArray::fromStdString(ContentOf(path).substr(44)), 22050);
  }
  /// Sends `messages` and returns how long the helper is heard; nothing else plays on the server.
  double Heard(const std::vector<std::string>& messages) {
    const auto other = RealServer::Other("parec", "mic_desk");
    RealServer::HearMore(*other);
    for (const auto& message : messages) Send(message);
    EXPECT_TRUE(Eventually(RealServer::Plays) && Eventually([] { return !RealServer::Plays(); }));
    RealServer::HearMore(*other);
    return Length(other->readAll(), 8000);
  }

  ScratchFolder folder;
  int count = 1;
  char* arguments[1] = {};
  QCoreApplication application{count, arguments};
  QtEventLoop loop;
  LocalExchange exchange{loop};
  QString arrived;
  int lost = 0;
  std::vector<std::unique_ptr<QProcess>> helpers;
};

TEST_F(SpeechTest, VoicesOfTheUsersLanguageComeFirst) {
  const std::pair<const char*, QStringList> rows[] = {
      {"C", {"English (America)", "English (America, New York City)"}},
      {"en_GB.UTF-8", {"English (Great Britain)"}},
      {"de_AT.UTF-8", {"German", "Afrikaans"}},
      {"pt_BR.UTF-8", {"Portuguese (Brazil)", "Portuguese (Portugal)", "Afrikaans"}}};
  for (const auto& [locale, first] : rows) {
    auto& helper = Start(locale);
    auto voices = Voices();
    EXPECT_EQ(voices.mid(0, first.size()), first) << locale;
    EXPECT_TRUE(voices.size() > 50 && voices.removeDuplicates() == 0 && !voices.contains(""));
    Unload(helper);
  }
}

TEST_F(SpeechTest, VoiceAndRateChangeWhatIsSpokenInTheOrderOfTheMessages) {
  auto& helper = Start();
  const auto german = std::to_string(Voices().indexOf("German"));
  const auto seconds = [this](const std::vector<std::string>& commands) {
    for (const auto& command : commands) Send(command);
    return static_cast<double>(Size(Write(std::to_string(folder.Count("")), "1999 2777"))) / (22050.0 * 2);
  };
  constexpr double kSame = 0.03;  // the engine's timing varies with what it spoke before
  const auto normal = seconds({});
  const auto slow = seconds({"SRT:-5"});
  const auto slowest = seconds({"SRT:-10"});
  EXPECT_TRUE(slow > normal * 1.2 && slowest > slow * 1.1);
  EXPECT_NEAR(seconds({"SRT:-99999999999999999999"}), slowest, kSame);
  EXPECT_NEAR(seconds({"SRT:fast", "SRT:", "SVC:-1", "SVC:100000", "xyz", "STOP:all"}), slowest, kSame);
  EXPECT_LT(seconds({"SRT:7"}), normal / 1.5);
  EXPECT_NEAR(seconds({"SRT:0", "SVC:0"}), normal, kSame);
  EXPECT_GT(std::abs(seconds({"SVC:" + german}) - normal), 3 * kSame);
  EXPECT_GT(Size(Write("markup", "<b>bold</b>")), Size(Write("bold", "bold")) * 3 / 2) << "markup is text";
  const auto slowly = (Send("SRT:-10"), Write("slowly", "Hello"));
  Send("SRT:10");
  EXPECT_GT(Size(slowly), 2 * Size(Write("fast", "Hello"))) << "a later rate changed the text";
  Unload(helper);
}

TEST_F(SpeechTest, NoTextHarmsTheHelperAndAFailedWriteLeavesNoFile) {
  auto& helper = Start("C.UTF-8", 2'000'000);
  Send("STW:Hello");
  std::filesystem::create_directory(folder / "folder");
  for (const auto& name : {"nowhere/x.wav", "folder"}) Write(name, "Hello");
  Send("SFS:" + (folder / "x.wav"));
  for (const auto& text : {std::string(), std::string("..."), LongText(20'000)}) Send("STW:" + text);
  std::string controls;
  for (char code = 0; code < 32; ++code) controls += std::string("a") + code + "50P";
  for (const auto& text :
       {controls, std::string("😀👨‍👩‍👧‍👦🏳️‍🌈 \u202e\ufeff\u0085 hello"),
        std::string("[[h@l'oU]] &amp; </speak> %s%n\x7f one"), "hello" + std::string(20'000, '\n') + "again"})
    EXPECT_GT(Size(Write(std::to_string(folder.Count("")), text)), 1000U);
  EXPECT_EQ(folder.Count("x.wav") + folder.Count("."), 0U) << "a file was left behind";
  Send("ULD:");
  const auto complaints = Ended(helper);
  for (const auto& part : {"no sound file was named", "nowhere/x.wav", "folder",
                           "x.wav: the text produced no speech", "too large"})
    EXPECT_NE(complaints.find(part), std::string::npos) << part << " in: " << complaints;
}

TEST_F(SpeechTest, AFileAppearsCompleteAndTheNextHelperRemovesThatOfAKilledOne) {
  auto& killed = Start();
  const auto whole = Write("whole.wav", LongText(40'000));
  EXPECT_TRUE(Eventually([&] { return folder.Count(".") > 0; }));  // the file is being written
  EXPECT_GT(Size(whole), 22050U * 2 * 60 * 20);
  EXPECT_EQ(folder.Count("."), 0U);
  Write("ttstmp.wav", LongText(kLong));
  ASSERT_TRUE(Eventually([&] { return folder.Count(".") > 0; }));  // the file is being written
  killed.kill();
  EXPECT_TRUE(Eventually([&] { return lost == 1; }));
  EXPECT_EQ(folder.Count("ttstmp.wav"), 0U);
  EXPECT_EQ(folder.Count(".ttstmp.wav"), 1U);
  PutFile(folder / ".ttstmp.wav.mine", "another's");
  auto& first = Start();
  EXPECT_GT(Size(Write("ttstmp.wav", "Hello")), 1000U);
  EXPECT_EQ(folder.Count("."), 1U);

  // A helper that is told to end finishes its file while the next helper works.
  const auto last = Write("last.wav", LongText(8'000));
  Send("ULD:");
  Start();
  EXPECT_GT(Size(Write("next.wav", "Hello")), 1000U);
  EXPECT_EQ(Ended(first), "");
  Size(last);
  EXPECT_EQ(lost, 1);
}

TEST_F(SpeechTest, TheEndOfTheLinkOrASignalEndsTheHelper) {
  for (const int signal : {0, SIGTERM}) {
    auto& helper = Start();
    Write("ttstmp.wav", LongText(kLong));
    ASSERT_TRUE(Eventually([&] { return folder.Count(".") > 0; }));  // the file is being written
    signal == 0 ? exchange.Close() : void(::kill(static_cast<pid_t>(helper.processId()), signal));
    Ended(helper, signal == 0 ? 1 : 0);
    EXPECT_EQ(folder.Count(""), 0U);
  }
}

TEST_F(SpeechTest, ANewFileReplacesTheOlderOne) {
  auto& helper = Start();
  PutFile(folder / "ttstmp.wav", "older");
  // One text is being written and one is waiting: both are given up, but not the text for another file.
  Write("ttstmp.wav", LongText(kLong));
  Send("STW:" + LongText(1000));
  ASSERT_TRUE(Eventually([&] { return folder.Count(".") > 0; }));  // the file is being written
  const auto other = Write("other.wav", LongText(1000));
  const auto path = Write("ttstmp.wav", "Hello");
  Send("Stp:");
  EXPECT_LT(Size(path), Size(other));
  Unload(helper);
  EXPECT_LT(Size(path), Size(other));
  EXPECT_EQ(folder.Count(""), 2U);
}

TEST_F(SpeechTest, TextsAreSpokenInOrderUntilTheyAreStoppedAndASoundServerMayBeMissingOrHang) {
  RealServer server;
  auto& helper = Start();
  Send("Say:Hello");
  EXPECT_TRUE(Eventually([&] { return helper.readAllStandardError().contains("sound server"); }));
  server.Start();
  const double hello = Spoken("Hello"), bye = Spoken("Thank you for your call.");
  EXPECT_NEAR(Heard({"Stp:", "Say:Hello", "Say:Thank you for your call."}), hello + bye + 0.5, 0.4);
  const auto say_long = [&] {
    for (const auto& text : {LongText(kLong), std::string("Hello")}) Send("Say:" + text);
    EXPECT_TRUE(Eventually(RealServer::Plays));
  };
  const auto stops = [] { return Eventually([] { return !RealServer::Plays(); }); };
  say_long();
  Send("Stp:");
  EXPECT_TRUE(stops());
  EXPECT_NEAR(Heard({"Say:Thank you for your call."}), bye, 0.1) << "a waiting text was spoken";
  say_long();
  EXPECT_NEAR(Spoken("Hello"), hello, 0.1) << "a file interrupts a long text";
  EXPECT_TRUE(stops());
  say_long();
  Unload(helper);
  EXPECT_TRUE(stops());
  auto& next = Start();
  server.Hang();
  Send("Say:Hello");
  Spoken("Hello");
  Send("ULD:");
  Ended(next);
}

}  // namespace
}  // namespace orven::test
