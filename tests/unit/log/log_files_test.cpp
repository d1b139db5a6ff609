// SPDX-License-Identifier: GPL-3.0-or-later
#include <gmock/gmock.h>

#include "base/runtime_error.h"
#include "log/log_viewer.h"
#include "support/world.h"

namespace orven::test {
namespace {

using std::chrono::sys_days;
using testing::ElementsAre;
using namespace std::chrono_literals;

class LogFilesTest : public testing::Test {
 protected:
  std::vector<std::string> Names() const { return files.Names("/app/Log/"); }

  VirtualTime time{sys_days(2003y / 3 / 31) + 23h + 59min + 59s};
  MemoryFiles files{time};
  Settings settings;
  const ApplicationFolder home{"/app"};
  LogFiles log{time, files, time, settings, home};
};

TEST_F(LogFilesTest, EachEnabledLogHasOneFilePerDay) {
  log.WriteSystem("one");
  log.WriteCalls("t\r\nwo");
  time.RunFor(1s);
  log.WriteSystem("three");
  settings.cLogSys = 0;
  log.WriteSystem("dropped");
  EXPECT_EQ(files.Content("/app/Log/3-31-2003_Sys.txt"), "23:59:59 : one\r\n");
  EXPECT_EQ(files.Content("/app/Log/3-31-2003_Calls.txt"), "23:59:59 : t  wo\r\n");
  EXPECT_EQ(files.Content("/app/Log/4-1-2003_Sys.txt"), "00:00:00 : three\r\n");
  EXPECT_THAT(log.List("System"), ElementsAre("3-31-2003_Sys.txt", "4-1-2003_Sys.txt"));
}

TEST_F(LogFilesTest, LinesWaitForRoomOnTheDiskAndDelayNoOtherFile) {
  bool full = true;
  files.before_write = [&](const std::string& path) {
    if (full && path.ends_with("_Sys.txt")) throw RuntimeError(ErrorNumber::DiskFull);
  };
  for (int line = 0; line < 1001; ++line) log.WriteSystem("line " + std::to_string(line));
  log.WriteCalls("a call");
  log.Delete("none.txt");
  EXPECT_THAT(Names(), ElementsAre("3-31-2003_Calls.txt"));
  full = false;
  time.RunFor(1s);
  log.WriteSystem("the next day");
  const auto lines = files.Content("/app/Log/3-31-2003_Sys.txt");
  EXPECT_TRUE(lines.starts_with("23:59:59 : line 1\r\n23:59:59 : line 2\r\n")) << "1000 lines are kept";
  EXPECT_TRUE(lines.ends_with("23:59:59 : line 1000\r\n"));
  EXPECT_EQ(files.Content("/app/Log/4-1-2003_Sys.txt"), "00:00:00 : the next day\r\n");
}

TEST_F(LogFilesTest, PurgesByMonthsAndLetsOtherEventsRun) {
  const auto february = sys_days(2003y / 2 / 28);
  files.PutAt("/app/Log/at the limit.txt", february);
  files.PutAt("/app/Log/after.txt", february + 1s);
  files.PutAt("/app/Log/notes.doc", february - 24h);
  settings.LogFor = "never";
  log.PurgeOldLogs({});
  EXPECT_EQ(Names().size(), 3U);
  bool done = false;
  settings.LogFor = "1 Last Month";
  log.PurgeOldLogs([&] { done = true; });
  EXPECT_FALSE(done) << "each task deletes one file at most";
  time.RunFor(1ms);
  EXPECT_TRUE(done);
  EXPECT_THAT(Names(), ElementsAre("after.txt"));
}

TEST_F(LogFilesTest, ALineThatIsTooLongIsCutBetweenCharacters) {
  const std::string wide = "\xE2\x82\xAC";  // one character of three bytes
  const std::string endless(LogReading::kMostBytesInLine - 1, 'x');
  files.Put("c.txt", endless + wide + std::string("\0\n\n", 3) + std::string(5000, '\x80'));
  LogReading reading(files, "c.txt");
  LogLines lines;
  for (auto piece = reading.Next(); !piece.ends.empty(); piece = reading.Next())
    lines.Append(std::move(piece));
  ASSERT_EQ(lines.Count(), 6U);
  EXPECT_EQ(lines.Line(0), endless);
  EXPECT_EQ(lines.Line(1), wide + std::string(1, '\0'));
  EXPECT_EQ(lines.Line(2), "");
  EXPECT_EQ(lines.Line(3).size() + lines.Line(4).size() + lines.Line(5).size(), 5000U);
}

}  // namespace
}  // namespace orven::test
