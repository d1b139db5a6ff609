// SPDX-License-Identifier: GPL-3.0-or-later
#include <gmock/gmock.h>

#include "base/runtime_error.h"
#include "log/mdlLog.h"
#include "support/world.h"

namespace orven::test {
namespace {

using std::chrono::sys_days;
using testing::ElementsAre;
using testing::IsEmpty;
using namespace std::chrono_literals;

constexpr const char* kFolder = "/app/Log/";

class LogFilesTest : public testing::Test {
 protected:
  LogFilesTest() { shared.application_folder = "/app"; }

  VirtualTime time{sys_days(2003y / 3 / 31) + 23h + 59min + 59s};
  MemoryFiles files{time};
  Settings settings;
  SharedOptions shared;
  LogFiles log{time, files, time, settings, shared};
};

TEST_F(LogFilesTest, OneFileADayAndKind) {
  log.WriteSystem("one");
  log.WriteCalls("t\r\nwo");
  time.RunFor(1s);
  log.WriteSystem("three");
  EXPECT_EQ(files.Content("/app/Log/3-31-2003_Sys.txt"), "23:59:59 : one\r\n");
  EXPECT_EQ(files.Content("/app/Log/3-31-2003_Calls.txt"), "23:59:59 : t  wo\r\n");
  EXPECT_EQ(files.Content("/app/Log/4-1-2003_Sys.txt"), "00:00:00 : three\r\n");
  EXPECT_THAT(log.List("System"), ElementsAre("3-31-2003_Sys.txt", "4-1-2003_Sys.txt"));
  EXPECT_THAT(log.List("Calls"), ElementsAre("3-31-2003_Calls.txt"));
  EXPECT_EQ(log.List("All").size(), 3U);
  EXPECT_THAT(log.List("Other"), IsEmpty());
  log.Delete("4-1-2003_Sys.txt");
  EXPECT_THAT(log.List("System"), ElementsAre("3-31-2003_Sys.txt"));
}

TEST_F(LogFilesTest, EachLogHasItsSwitch) {
  settings.cLogSys = 0;
  log.WriteSystem("dropped");
  log.WriteCalls("kept");
  EXPECT_THAT(files.Names(kFolder), ElementsAre("3-31-2003_Calls.txt"));
}

TEST_F(LogFilesTest, NoFailureReachesTheCaller) {
  files.before_write = [](const std::string&) { throw RuntimeError(ErrorNumber::DiskFull); };
  log.WriteSystem("lost");
  log.Delete("none.txt");
  EXPECT_THAT(files.Names(kFolder), IsEmpty());
}

TEST_F(LogFilesTest, LinesWaitForRoomOnTheDiskAndHoldUpNoOtherFile) {
  bool full = true;
  files.before_write = [&](const std::string& path) {
    if (full && path.ends_with("_Sys.txt")) throw RuntimeError(ErrorNumber::DiskFull);
  };
  for (int line = 0; line < 1001; ++line) log.WriteSystem("line " + std::to_string(line));
  log.WriteCalls("a call");
  EXPECT_THAT(files.Names(kFolder), ElementsAre("3-31-2003_Calls.txt"));
  full = false;
  time.RunFor(1s);
  log.WriteSystem("the next day");
  const auto lines = files.Content("/app/Log/3-31-2003_Sys.txt");
  EXPECT_TRUE(lines.starts_with("23:59:59 : line 1\r\n23:59:59 : line 2\r\n")) << "memory has an end";
  EXPECT_TRUE(lines.ends_with("23:59:59 : line 1000\r\n"));
  EXPECT_EQ(files.Content("/app/Log/4-1-2003_Sys.txt"), "00:00:00 : the next day\r\n");
}

TEST_F(LogFilesTest, PurgesByMonthsAndLetsOtherEventsRun) {
  const auto february = sys_days(2003y / 2 / 28);
  files.PutAt("/app/Log/at the limit.txt", february);
  files.PutAt("/app/Log/after.txt", february + 1s);
  files.PutAt("/app/Log/notes.doc", february - 24h);
  bool done = false;
  const auto purge = [&] {
    done = false;
    log.PurgeOldLogs([&] { done = true; });
  };
  settings.LogFor = "never";
  purge();
  EXPECT_TRUE(done);
  EXPECT_EQ(files.Names(kFolder).size(), 3U);

  settings.LogFor = "1 Last Month";
  purge();
  EXPECT_FALSE(done) << "files are looked at between other events";
  time.RunFor(1ms);
  EXPECT_TRUE(done);
  EXPECT_THAT(files.Names(kFolder), ElementsAre("after.txt"));
}

TEST(MonthsBefore, KeepsTheDayOrTakesTheMonthsLast) {
  EXPECT_EQ(MonthsBefore(2003y / 3 / 31, 1), 2003y / 2 / 28);
  EXPECT_EQ(MonthsBefore(2004y / 3 / 31, 1), 2004y / 2 / 29);
  EXPECT_EQ(MonthsBefore(2003y / 1 / 15, 3), 2002y / 10 / 15);
}

}  // namespace
}  // namespace orven::test
