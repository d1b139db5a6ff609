// SPDX-License-Identifier: GPL-3.0-or-later
#include <algorithm>
#include <csignal>
#include <cstring>

#include "helper_fixture.h"

namespace orven::test {
namespace {

constexpr std::size_t kLong = 1'000'000;  // bytes of text; seconds of work

/// The size that a WAV file says it has.
std::size_t StatedSize(const std::string& path) {
  const auto header = ContentOf(path).substr(0, 8);
  std::uint32_t size = 0;
  if (header.size() == 8) std::memcpy(&size, header.data() + 4, sizeof size);
  return size + 8;
}

class SpeechFileTest : public SpeechTest {
 protected:
  /// The helper has begun to write a file.
  bool Writing() const {
    return Eventually([&] { return folder_.Count(".") > 0; });
  }
};

TEST_F(SpeechFileTest, LongTextAppearsWholeAndComplete) {
  Helper helper(exchange_);
  const auto part = Size(Write("part.wav", LongText(10'000)));
  const auto path = Write("whole.wav", LongText(100'000));
  EXPECT_TRUE(Writing());
  std::size_t first_seen = 0;
  EXPECT_TRUE(Eventually([&] {
    if (IsThere(path)) first_seen = std::filesystem::file_size(path);
    return first_seen > 0;
  }));
  EXPECT_EQ(first_seen, StatedSize(path));
  EXPECT_NEAR(static_cast<double>(first_seen) / static_cast<double>(part), 10, 0.2);
  EXPECT_EQ(folder_.Count("."), 0U);
}

TEST_F(SpeechFileTest, KilledHelperLeavesNoFileAndTheNextCleansUp) {
  const auto path = folder_ / "ttstmp.wav";
  {
    Helper helper(exchange_);
    Write("ttstmp.wav", LongText(kLong));
    ASSERT_TRUE(Writing());
    helper.process.kill();
    EXPECT_TRUE(helper.Ended());
    EXPECT_TRUE(Eventually([&] { return lost_ == 1; }));
    EXPECT_FALSE(IsThere(path));
  }
  EXPECT_EQ(folder_.Count(".ttstmp.wav"), 1U);
  PutFile(folder_ / ".ttstmp.wav.mine", "another's");
  Helper helper(exchange_);
  Write("ttstmp.wav", "Hello");
  EXPECT_GT(Size(path), 1000U);
  EXPECT_EQ(folder_.Count("."), 1U);
}

TEST_F(SpeechFileTest, HelperThatIsToldToEndFinishesItsFileBesideTheNextHelper) {
  Helper first(exchange_);
  const auto path = Write("first.wav", LongText(20'000));
  Send("Say:This is cut off, and needs no sound server to be.");
  Send("ULD:");
  Helper second(exchange_);
  EXPECT_GT(Size(Write("second.wav", "Hello")), 1000U);
  EXPECT_TRUE(first.EndedWell()) << first.Complaints();
  EXPECT_EQ(Size(path), StatedSize(path));
  EXPECT_EQ(lost_, 0);
}

TEST_F(SpeechFileTest, EndOfTheLinkAndSignalsEndTheHelper) {
  for (const int signal : {0, SIGTERM}) {
    Helper helper(exchange_);
    Write("ttstmp.wav", LongText(kLong));
    ASSERT_TRUE(Writing());
    if (signal == 0) {
      exchange_.Close();
    } else {
      ::kill(static_cast<pid_t>(helper.process.processId()), signal);
    }
    EXPECT_TRUE(helper.Ended());
    EXPECT_EQ(helper.process.exitStatus(), QProcess::NormalExit);
    EXPECT_EQ(helper.process.exitCode(), signal == 0 ? 1 : 0);
    EXPECT_EQ(folder_.Count(""), 0U);
  }
}

TEST_F(SpeechFileTest, NewFileTakesThePlaceOfTheOlderOne) {
  Helper helper(exchange_);
  const auto path = folder_ / "ttstmp.wav";
  PutFile(path, "older");
  Send("SFS:" + path);
  WaitForAnswer();
  EXPECT_FALSE(IsThere(path));

  // Under way and waiting: both are given up, and so is what is being written elsewhere not.
  Write("ttstmp.wav", LongText(kLong));
  Send("STW:" + LongText(1000));
  ASSERT_TRUE(Writing());
  const auto other = Write("other.wav", LongText(1000));
  Write("ttstmp.wav", "Hello");
  Send("Stp:");
  EXPECT_LT(Size(path), Size(other));
  Send("ULD:");
  EXPECT_TRUE(helper.EndedWell()) << helper.Complaints();
  EXPECT_LT(Size(path), Size(other));
  EXPECT_EQ(folder_.Count(""), 2U);
}

class SpeakIntoFile : public ::testing::Test {
 protected:
  int Run(const QStringList& arguments, const std::string& text) {
    QProcess process;
    process.setProcessEnvironment(QProcessEnvironment());
    process.start(TTS_PROGRAM, arguments);
    process.write(text.data(), static_cast<qint64>(text.size()));
    process.closeWriteChannel();
    EXPECT_TRUE(process.waitForFinished());
    complaint_ = process.readAllStandardError().toStdString();
    return process.exitCode();
  }

  ScratchFolder folder_;
  std::string complaint_;
};

TEST_F(SpeakIntoFile, SpeaksOrSaysWhyNot) {
  const auto path = folder_ / "greeting.wav";
  const QStringList arguments = {"-w", QString::fromStdString(path)};
  EXPECT_EQ(Run(arguments, "Please leave a message after the tone.\n"), 0) << complaint_;
  const auto greeting = ContentOf(path);
  EXPECT_GT(greeting.size(), 22050U * 2);
  for (const char* text : {"", "...", "\xff not UTF-8"}) {
    EXPECT_EQ(Run(arguments, text), 1);
    EXPECT_EQ(std::count(complaint_.begin(), complaint_.end(), '\n'), 1) << complaint_;
  }
  EXPECT_TRUE(ContentOf(path) == greeting);
  EXPECT_EQ(Run({"-w", "/nowhere/greeting.wav"}, "Hello"), 1);
  for (const QStringList& wrong :
       {QStringList(), QStringList{"-w"}, QStringList{"-x"}, QStringList{"-gc", "x"}}) {
    EXPECT_EQ(Run(wrong, ""), 2);
    EXPECT_TRUE(complaint_.starts_with("usage:"));
  }
  EXPECT_EQ(folder_.Count(""), 1U);
}

}  // namespace
}  // namespace orven::test
