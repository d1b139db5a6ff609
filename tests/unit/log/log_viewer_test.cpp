// SPDX-License-Identifier: GPL-3.0-or-later
#include <gmock/gmock.h>

#include "base/runtime_error.h"
#include "log/log_viewer.h"
#include "support/world.h"

namespace orven::test {
namespace {

using testing::ElementsAre;

/// A window whose letters are a pixel wide.
class CountingWindow : public LogViewerWindow {
 public:
  std::vector<std::string> names;
  std::string selected, state;
  std::size_t count = 0;
  std::int32_t extent = 0;

  void ShowFiles(const std::vector<std::string>& files, const std::string& name) override {
    names = files;
    selected = name;
  }
  void ShowLineCount(std::size_t lines) override { count = lines; }
  std::int32_t Widest(std::string_view line, std::int32_t widest) override {
    return std::max(widest, static_cast<std::int32_t>(line.size()));
  }
  void ShowExtent(std::int32_t pixels) override { extent = pixels; }
  void ShowState(const std::string& text) override { state = text; }
};

class LogViewerTest : public testing::Test {
 protected:
  LogViewerTest() {
    files.Put(folder + "a_Sys.txt", "one\r\ntwo\r\n");
    files.Put(folder + "b_Calls.txt", "a call");
  }
  std::vector<std::string> Lines() const {
    std::vector<std::string> lines;
    for (std::size_t at = 0; at < viewer.Lines().Count(); ++at) lines.emplace_back(viewer.Lines().Line(at));
    return lines;
  }
  void Load(const std::string& name) {
    viewer.Select(name);
    world.RunFor(1s);
  }

  World world;
  MemoryFiles& files = world.files;
  const std::string folder = std::string(World::kHome) + "/Log/";
  CountingWindow window;
  AnsweringMachine& machine = world.Machine();
  LogViewer viewer{{machine.log, files, world.background, machine.store, machine.settings, world.dialogs,
                    [](const std::string&) {}},
                   window};
};

TEST_F(LogViewerTest, PurgesBeforeItListsAndKeepsTheFileThatIsStillListed) {
  files.PutAt(folder + "old_Sys.txt", world.time.Now() - std::chrono::hours(24 * 40));
  world.registry.Set("LogFor", "1 Last Month");
  viewer.Open();
  world.RunFor(1s);
  EXPECT_THAT(window.names, ElementsAre("a_Sys.txt", "b_Calls.txt"));
  Load("a_Sys.txt");
  EXPECT_THAT(Lines(), ElementsAre("one", "two"));
  EXPECT_EQ(window.extent, 3 + 50);
  EXPECT_EQ(window.state, "2 lines");
  viewer.ChangeFilter("System");
  EXPECT_EQ(window.selected, "a_Sys.txt");
  viewer.ChangeFilter("Calls");
  EXPECT_THAT(window.names, ElementsAre("b_Calls.txt"));
  EXPECT_EQ(window.count, 0U);
  EXPECT_EQ(viewer.Selected(), "");
}

TEST_F(LogViewerTest, WhatIsNoTextOfLinesIsCutWhereNoCharacterIsHurt) {
  const std::string wide = "\xE2\x82\xAC";  // three bytes
  std::string endless(LogReading::kMostBytesInLine - 1, 'x');
  files.Put(folder + "c.txt", endless + wide + std::string("\0\n\n", 3) + std::string(5000, '\x80'));
  Load("c.txt");
  const auto lines = Lines();
  ASSERT_EQ(lines.size(), 6U);
  EXPECT_EQ(lines[0], endless);
  EXPECT_EQ(lines[1], wide + std::string(1, '\0'));
  EXPECT_EQ(lines[2], "");
  EXPECT_EQ(lines[3].size() + lines[4].size() + lines[5].size(), 5000U);
}

TEST_F(LogViewerTest, PropertiesApplyAtOnceAndPurge) {
  world.registry.Set("LogFor", "no such choice");
  world.registry.Set("cLogSys", "1");
  files.PutAt(folder + "old.txt", world.time.Now() - std::chrono::hours(24 * 70));
  LogProperties properties(machine.settings, machine.store, machine.log, viewer.Refresher());
  auto choices = properties.Load();
  EXPECT_EQ(choices.cmbLogFor, "For Ever");
  EXPECT_TRUE(choices.chkLogSys);
  choices = {true, false, "2 Last Month", true};
  properties.Ok(choices);
  machine.log.WriteSystem("dropped");
  machine.log.WriteCalls("kept");
  world.RunFor(1s);
  EXPECT_THAT(window.names, ElementsAre("12-31-2003_Calls.txt", "a_Sys.txt", "b_Calls.txt"))
      << "the viewer lists what is left";
  EXPECT_EQ(world.registry.Text("cLogCalls") + world.registry.Text("cLogSys") +
                world.registry.Text("cWornBeforeDelete") + world.registry.Text("LogFor"),
            "1012 Last Month");
}

}  // namespace
}  // namespace orven::test
