// SPDX-License-Identifier: GPL-3.0-or-later
#include "simulation/shrink.h"

#include <gmock/gmock.h>

#include <numeric>

namespace orven::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

TEST(Shrink, LeavesOnlyWhatTheFailureNeedsInItsOrder) {
  std::vector<int> all(100);
  std::iota(all.begin(), all.end(), 0);
  const auto has = [](const std::vector<int>& part, int element) {
    return std::ranges::find(part, element) != part.end();
  };
  EXPECT_THAT(Shrink(all, [&](const auto& part) { return has(part, 3) && has(part, 99) && has(part, 42); }),
              ElementsAre(3, 42, 99));
  EXPECT_EQ(Shrink(all, [](const auto& part) { return part.size() >= 7; }).size(), 7U);
  EXPECT_THAT(Shrink(all, [](const auto& /*part*/) { return true; }), IsEmpty());
  // An element that counts only once another is gone.
  EXPECT_THAT(Shrink(std::vector{1, 2, 3},
                     [&](const auto& part) { return has(part, 3) && (!has(part, 1) || has(part, 2)); }),
              ElementsAre(3));
}

}  // namespace
}  // namespace orven::test
