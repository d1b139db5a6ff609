// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/desktop/desktop_system.h"

#include <gtest/gtest.h>

#include "support/scratch_folder.h"

namespace orven {
namespace {

TEST(DesktopSystem, AFolderThatCannotBeLockedIsNobodysAndSaysWhy) {
  const test::ScratchFolder folder;
  DesktopSystem system(folder / "gone");
  EXPECT_TRUE(system.ClaimInstance());
  EXPECT_NE(system.ClaimProblem().find(folder / "gone/.lock"), std::string::npos);
}

}  // namespace
}  // namespace orven
