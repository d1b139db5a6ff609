// SPDX-License-Identifier: GPL-3.0-or-later
#include <gtest/gtest.h>

#include <algorithm>
#include <set>

#include "support/world.h"

namespace orven::test {
namespace {

/// A call with a message of two seconds.
void LeaveMessage(World& world, const std::string& name) {
  world.line->Offer();
  world.line->CallerId(name, "555");
  for (int ring = 0; ring < 2; ++ring) world.line->Ring();
  world.time.RunUntil([&] { return world.Wave1.IsRecording(); }, 10s);
  world.RunFor(2s);
  world.HangUp();
  world.RunFor(1s);
}

/// The log tells of each thing that could not be written, once. (A journal that could only not be deleted
/// says so itself.)
void CheckLog(const World& world, const std::set<std::string>& failed) {
  const auto lines = world.SystemLog();
  for (const auto& path : failed) {
    const auto told = path.ends_with(".wav") ? "Record Message wave error 9" : "Disk full: " + path;
    const auto times = std::ranges::count_if(lines, [&](const auto& line) { return line.ends_with(told); });
    EXPECT_LE(times, 1) << path;
    EXPECT_GE(times, path.ends_with(".journal") ? 0 : 1) << path;
  }
}

/// Calls while `count` writes from write `first` on fail; with `lines_fit` not those of the logs.
void PlayCallOn(std::uint64_t first, std::uint64_t count, bool lines_fit) {
  World world;
  world.Start();
  std::set<std::string> failed;
  world.disk.on_failure = [&](const std::string& path) {
    if (!path.ends_with(".txt")) failed.insert(path);
  };
  world.disk.spares = [&](const std::string& path) { return lines_fit && path.ends_with(".txt"); };
  world.disk.FailAt(first, count);
  LeaveMessage(world, "Anna");
  EXPECT_EQ(world.Wave1.written + static_cast<int>(world.Wave1.unsaved.size()), 1) << "the call went on";
  for (const auto& path : world.Wave1.unsaved) EXPECT_EQ(world.files.Content(path), TimedWave::Sound(2s));
  world.disk.Mend();
  world.RunFor(5s);
  LeaveMessage(world, "Ben");
  const auto& records = world.database.Records();
  ASSERT_EQ(records.size(), 2U) << "both calls are filed, each once";
  EXPECT_EQ(records[0][0] + records[1][0], "AnnaBen");
  EXPECT_EQ(records[0][5], world.Wave1.unsaved.empty() ? "2" : "-1");
  CheckLog(world, failed);
  EXPECT_EQ(world.CallsLog().size(), 3U) << "a line waits for room";
}

TEST(FailingDisk, ACallSurvivesAFailureOfAnyOfItsWrites) {
  World world;
  world.Start();
  const auto before = world.disk.Writes();
  LeaveMessage(world, "Anna");
  const auto writes = world.disk.Writes() - before;
  ASSERT_GT(writes, 10U);
  for (std::uint64_t first = 1; first <= writes; ++first) {
    for (const auto count : {std::uint64_t{1}, std::uint64_t{4}, FailingDisk::kForGood}) {
      for (const bool lines_fit : {false, true}) {
        SCOPED_TRACE("write " + std::to_string(first) + ", " + std::to_string(count) + " failures");
        PlayCallOn(first, count, lines_fit);
        if (testing::Test::HasFailure()) return;
      }
    }
  }
}

}  // namespace
}  // namespace orven::test
