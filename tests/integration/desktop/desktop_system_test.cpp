// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/desktop/desktop_system.h"

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>

#include "support/scratch_folder.h"

namespace orven {
namespace {

TEST(DesktopSystem, OneProcessAtATimeHoldsAFolderAndACrashFreesIt) {
  const test::ScratchFolder folder;
  int ready[2] = {};
  ASSERT_EQ(pipe(ready), 0);
  const pid_t other = fork();
  if (other == 0) {
    DesktopSystem holder(folder / "");
    const char claimed = holder.ClaimInstance() ? 'y' : 'n';
    if (write(ready[1], &claimed, 1) != 1) _exit(1);
    for (;;) pause();
  }
  char claimed = '?';
  EXPECT_EQ(read(ready[0], &claimed, 1), 1);
  EXPECT_EQ(claimed, 'y');
  DesktopSystem system(folder / "");
  EXPECT_FALSE(system.ClaimInstance());
  EXPECT_EQ(system.ClaimProblem(), "");
  kill(other, SIGKILL);
  waitpid(other, nullptr, 0);
  EXPECT_TRUE(system.ClaimInstance());
}

TEST(DesktopSystem, AFolderThatCannotBeLockedIsNobodysAndSaysWhy) {
  const test::ScratchFolder folder;
  DesktopSystem system(folder / "gone");
  EXPECT_TRUE(system.ClaimInstance());
  EXPECT_NE(system.ClaimProblem().find(folder / "gone/.lock"), std::string::npos);
}

}  // namespace
}  // namespace orven
