// SPDX-License-Identifier: GPL-3.0-or-later
#include <gtest/gtest.h>

#include <algorithm>
#include <set>

#include "records/call.h"
#include "support/world.h"

namespace orven::test {
namespace {

/// Somebody calls and leaves a message of two seconds.
void LeaveMessage(World& world, const std::string& name) {
  world.line->Offer();
  world.line->CallerId(name, "555");
  for (int ring = 0; ring < 2; ++ring) world.line->Ring();
  world.time.RunUntil([&] { return world.Wave1.IsRecording(); }, 10s);
  world.RunFor(2s);
  world.HangUp();
  world.RunFor(1s);
}

bool IsLog(const std::string& path) {
  return path.ends_with(".txt");
}

bool NamesFullDisk(const std::string& line) {
  return line.find("Disk full") != std::string::npos || line.find("wave error 9") != std::string::npos;
}

std::uint64_t WritesOfACall() {
  World world;
  world.Start();
  const auto before = world.disk.Writes();
  LeaveMessage(world, "Anna");
  return world.disk.Writes() - before;
}

struct Fault {
  std::uint64_t first, count;
  bool lines_fit;  ///< the disk still takes lines of the logs
};

/// The log tells of each thing that could not be written, once. (A journal that could only not be deleted
/// says so itself.)
void CheckLog(const World& world, const std::set<std::string>& failed) {
  const auto lines = world.SystemLog();
  std::ptrdiff_t named = 0;
  for (const auto& path : failed) {
    const auto count = std::ranges::count_if(lines, [&](const auto& line) {
      return NamesFullDisk(line) && (path.ends_with(".wav") ? line.starts_with("Record Message ")
                                                            : line.find(path) != std::string::npos);
    });
    EXPECT_LE(count, 1) << path;
    EXPECT_TRUE(count == 1 || path.ends_with(".journal")) << path;
    named += count;
  }
  EXPECT_EQ(std::ranges::count_if(lines, NamesFullDisk), named) << "nothing else";
}

void CheckWholeCall(const World& world, std::size_t record, const std::string& name) {
  EXPECT_EQ(world.database.Field(record, kCallName), name);
  EXPECT_EQ(world.database.Field(record, kType), "2");
  EXPECT_EQ(world.files.Content(world.messages + world.database.Field(record, kCallMassageName)),
            TimedWave::Sound(2s));
}

void PlayCallOn(const Fault& fault) {
  World world;
  world.Start();
  std::set<std::string> failed;
  world.disk.on_failure = [&](const std::string& path) {
    if (!IsLog(path)) failed.insert(path);
  };
  world.disk.spares = [&](const std::string& path) { return fault.lines_fit && IsLog(path); };
  world.disk.FailAt(fault.first, fault.count);
  LeaveMessage(world, "Anna");
  EXPECT_EQ(world.Wave1.recorded.size(), 1U) << "the call went on";
  EXPECT_EQ(world.Machine().progress.State(), CallState::Idle);
  EXPECT_EQ(world.Wave1.written + static_cast<int>(world.Wave1.unsaved.size()), 1);
  for (const auto& path : world.Wave1.unsaved) EXPECT_EQ(world.files.Content(path), TimedWave::Sound(2s));

  world.disk.Mend();
  world.RunFor(5s);
  LeaveMessage(world, "Ben");
  ASSERT_EQ(world.database.Records().size(), 2U) << "both calls are filed, each once";
  if (world.Wave1.unsaved.empty()) CheckWholeCall(world, 0, "Anna");
  EXPECT_EQ(world.database.Field(0, kCallName), "Anna");
  CheckWholeCall(world, 1, "Ben");
  CheckLog(world, failed);
  EXPECT_EQ(world.CallsLog().size(), 3U) << "a line waits for room";
}

TEST(FailingDisk, ACallSurvivesAFailureOfAnyOfItsWrites) {
  const auto writes = WritesOfACall();
  ASSERT_GT(writes, 10U);
  for (std::uint64_t first = 1; first <= writes; ++first) {
    for (const auto count : {std::uint64_t{1}, std::uint64_t{4}, FailingDisk::kForGood}) {
      for (const bool lines_fit : {false, true}) {
        SCOPED_TRACE("write " + std::to_string(first) + ", " + std::to_string(count) +
                     (lines_fit ? " failures, lines fit" : " failures"));
        PlayCallOn({first, count, lines_fit});
        if (testing::Test::HasFailure()) return;
      }
    }
  }
}

}  // namespace
}  // namespace orven::test
