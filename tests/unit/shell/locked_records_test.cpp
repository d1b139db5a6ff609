// SPDX-License-Identifier: GPL-3.0-or-later
// A start at which the records cannot be opened: another program has locked them, or their disk is not there.
#include <gmock/gmock.h>

#include <algorithm>

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

}  // namespace
}  // namespace orven::test
