// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/desktop/desktop_system.h"

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <QTemporaryDir>
#include <array>
#include <csignal>

namespace orven {
namespace {

/// A process that claims a folder and then waits to be killed.
class OtherProcess {
 public:
  explicit OtherProcess(const std::string& folder) {
    std::array<int, 2> ready = {};
    EXPECT_EQ(pipe(ready.data()), 0);
    pid_ = fork();
    if (pid_ == 0) {
      DesktopSystem system(folder);
      const char claimed = system.ClaimInstance() ? 'y' : 'n';
      if (write(ready[1], &claimed, 1) != 1) _exit(1);
      for (;;) pause();
    }
    char claimed = '?';
    EXPECT_EQ(read(ready[0], &claimed, 1), 1);
    EXPECT_EQ(claimed, 'y');
    close(ready[0]);
    close(ready[1]);
  }
  ~OtherProcess() { Crash(); }
  OtherProcess(const OtherProcess&) = delete;
  OtherProcess& operator=(const OtherProcess&) = delete;

  void Crash() {
    if (pid_ <= 0) return;
    kill(pid_, SIGKILL);
    waitpid(pid_, nullptr, 0);
    pid_ = 0;
  }

 private:
  pid_t pid_ = 0;
};

TEST(DesktopSystem, OneProcessAtATimeHoldsAFolderAndACrashFreesIt) {
  const QTemporaryDir folder;
  const QTemporaryDir another_folder;
  OtherProcess other(folder.path().toStdString());
  DesktopSystem system(folder.path().toStdString());
  EXPECT_FALSE(system.ClaimInstance());
  EXPECT_EQ(system.ClaimProblem(), "");
  EXPECT_TRUE(DesktopSystem(another_folder.path().toStdString()).ClaimInstance());
  other.Crash();
  EXPECT_TRUE(system.ClaimInstance());
  EXPECT_TRUE(system.ClaimInstance()) << "the holder may ask again";
}

TEST(DesktopSystem, AFolderThatCannotBeLockedIsNobodysAndSaysWhy) {
  const QTemporaryDir folder;
  const std::string missing = folder.filePath("gone").toStdString();
  DesktopSystem system(missing);
  EXPECT_TRUE(system.ClaimInstance());
  EXPECT_EQ(system.ClaimProblem(), "Cannot open \"" + missing + "/.lock\": No such file or directory");
}

TEST(DesktopSystem, IsNoWindowsHere) {
  DesktopSystem system("/");
  EXPECT_EQ(system.Version().platform, SystemVersion::Platform::Other);
  EXPECT_GE(system.Version().major, 2);
  EXPECT_FALSE(system.InitCommonControls(8, 0x200));
}

}  // namespace
}  // namespace orven
