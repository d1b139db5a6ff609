// SPDX-License-Identifier: GPL-3.0-or-later
#include <gtest/gtest.h>

#include <algorithm>
#include <set>

#include "support/world.h"

namespace orven::test {
namespace {

bool IsLog(const std::string& path) {
  return path.ends_with(".txt");
}

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
  std::multiset<std::string> told;
  for (const auto& line : world.SystemLog()) {
    const auto at = std::ranges::find_if(failed, [&](const auto& path) {
      return path.ends_with(".wav") ? line.starts_with("Record Message wave error 9")
                                    : line.ends_with("Disk full: " + path);
    });
    if (at != failed.end()) told.insert(*at);
    EXPECT_TRUE(at != failed.end() || line.find("Disk full") == std::string::npos) << line;
  }
  for (const auto& path : failed) {
    EXPECT_LE(told.count(path), 1U) << path;
    EXPECT_GE(told.count(path), path.ends_with(".journal") ? 0U : 1U) << path;
  }
}

void CheckCall(const World& world, std::size_t record, const std::string& name, bool whole) {
  EXPECT_EQ(world.database.Field(record, kCallName), name);
  if (!whole) return;
  EXPECT_EQ(world.database.Field(record, kType), "2");
  EXPECT_EQ(world.files.Content(world.messages + world.database.Field(record, kCallMassageName)),
            TimedWave::Sound(2s));
}

/// Calls while `count` writes from write `first` on fail; with `lines_fit` not those of the logs.
void PlayCallOn(std::uint64_t first, std::uint64_t count, bool lines_fit) {
  World world;
  world.Start();
  std::set<std::string> failed;
  world.disk.on_failure = [&](const std::string& path) {
    if (!IsLog(path)) failed.insert(path);
  };
  world.disk.spares = [&](const std::string& path) { return lines_fit && IsLog(path); };
  world.disk.FailAt(first, count);
  LeaveMessage(world, "Anna");
  EXPECT_EQ(world.Wave1.recorded.size(), 1U) << "the call went on";
  EXPECT_EQ(world.Machine().progress.State(), CallState::Idle);
  EXPECT_EQ(world.Wave1.written + static_cast<int>(world.Wave1.unsaved.size()), 1);
  for (const auto& path : world.Wave1.unsaved) EXPECT_EQ(world.files.Content(path), TimedWave::Sound(2s));
  world.disk.Mend();
  world.RunFor(5s);
  LeaveMessage(world, "Ben");
  ASSERT_EQ(world.database.Records().size(), 2U) << "both calls are filed, each once";
  CheckCall(world, 0, "Anna", world.Wave1.unsaved.empty());
  CheckCall(world, 1, "Ben", true);
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
