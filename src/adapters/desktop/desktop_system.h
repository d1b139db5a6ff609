// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>

#include "platform/operating_system.h"
#include "platform/shell.h"

namespace orven {

/// The operating system's version (the kernel's) and the claim that makes this process the only instance in
/// its application folder: an advisory lock (flock) on the file `.lock`. The kernel releases it when the
/// process ends, so it is never stale; the file itself stays. Child processes do not inherit it. One thread.
class DesktopSystem final : public OperatingSystem {
 public:
  /// `application_folder` exists.
  explicit DesktopSystem(const std::string& application_folder) : path_(application_folder + "/.lock") {}
  ~DesktopSystem() override;
  DesktopSystem(const DesktopSystem&) = delete;
  DesktopSystem& operator=(const DesktopSystem&) = delete;

  SystemVersion Version() const override;
  bool InitCommonControls(std::uint32_t record_size, std::uint32_t classes) override;

  /// False when another process holds the lock. A folder that cannot be locked at all (read-only, or a file
  /// system without locks) can be claimed by several processes; ClaimProblem then says why.
  bool ClaimInstance() override;

  /// Why the last claim gives no protection, one sentence with the file's name; empty when it does.
  const std::string& ClaimProblem() const { return problem_; }

 private:
  bool ClaimWithoutLock(const char* doing, int error);

  const std::string path_;
  int file_ = -1;  ///< locked while it is open
  std::string problem_;
};

/// The mouse's buttons as of the last event that this program received. Window systems swap the buttons
/// before a program sees them.
class QtMouse final : public Mouse {
 public:
  bool ButtonsSwapped() const override { return false; }
  bool IsDown(MouseKey button) const override;
};

}  // namespace orven
