// SPDX-License-Identifier: GPL-3.0-or-later
// A start at which the records cannot be opened: another program has locked them, or their disk is not there.
#include <gmock/gmock.h>

#include <algorithm>

#include "records/call.h"
#include "support/world.h"

namespace orven::test {
namespace {

TEST(LockedRecords, AreListedAsSoonAsTheyCanBeRead) {
  World world;
  world.AddMessage("old.wav", 1s);
  world.database.gone = true;
  world.Start();
  EXPECT_EQ(0, world.Machine().ListView1.Total());
  EXPECT_TRUE(world.Tapi1->IsLineOpen(0)) << "calls are answered meanwhile";
  world.RunFor(12s);
  world.database.gone = false;
  world.RunFor(6s);
  EXPECT_EQ(1, world.Machine().ListView1.Total());
  EXPECT_EQ(1U, world.views.rows.size());
  world.RunFor(60s);
  EXPECT_EQ(1, std::ranges::count(world.SystemLog(), "The call records can be read now"));
}

/// A call that ends before they can be read is not filed twice, nor its message taken for an unknown
/// caller's.
TEST(LockedRecords, GetTheInterruptedCallAndThoseOfThisRunOnceThatCanBe) {
  World world;
  world.Start();
  world.Talk();
  world.CallAndWaitForRecording();
  world.RunFor(2s);
  world.Crash();
  world.database.gone = true;
  world.Start();
  world.CallAndWaitForRecording();
  world.RunFor(3s);
  world.HangUp();
  world.CallAndWaitForRecording();
  world.database.gone = false;
  world.RunFor(12s);
  world.HangUp();
  world.RunFor(60s);
  std::vector<std::string> lengths;
  for (std::size_t record = 0; record < world.database.Records().size(); ++record)
    lengths.push_back(world.database.Field(record, kType));
  EXPECT_THAT(lengths, testing::UnorderedElementsAre("2", "3", "12"));
  EXPECT_EQ(3U, world.views.rows.size());
  EXPECT_FALSE(world.files.Exists("/home/orven/Call.journal"));
}

}  // namespace
}  // namespace orven::test
