// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>

#include "platform/mouse.h"
#include "platform/operating_system.h"

namespace orven {

/// An advisory lock on the file `.lock` of a folder. The kernel holds it for this process and lets go
/// of it when the process ends, however it ends, so that it can never be stale; the file itself
/// stays. Child processes do not inherit it. POSIX (flock). One thread.
class InstanceLock {
 public:
  explicit InstanceLock(std::string folder);
  ~InstanceLock();
  InstanceLock(const InstanceLock&) = delete;
  InstanceLock& operator=(const InstanceLock&) = delete;

  enum class Result {
    Taken,        ///< ours now, or already
    HeldByOther,  ///< another process has it
    Failed,       ///< neither is known: Problem() says why
  };
  Result Take();

  /// Why the last Take failed: one sentence with the file's name; else empty.
  const std::string& Problem() const { return problem_; }

 private:
  Result Fail(const char* doing, int error);

  std::string path_;
  int file_ = -1;
  std::string problem_;
};

/// The operating system's few services. The version is the kernel's.
class DesktopSystem final : public OperatingSystem {
 public:
  /// `application_folder` is what ClaimInstance claims; it exists.
  explicit DesktopSystem(const std::string& application_folder);

  SystemVersion Version() const override;
  bool InitCommonControls(std::uint32_t record_size, std::uint32_t classes) override;

  /// A folder that cannot be locked at all (read-only, no locks on that file system) is not held by
  /// anybody: the claim succeeds, and ClaimProblem says what is missing.
  bool ClaimInstance() override;

  /// One sentence for the user on why the last claim gives no protection; empty when it does.
  const std::string& ClaimProblem() const { return lock_.Problem(); }

 private:
  InstanceLock lock_;
};

/// The mouse port on Qt: the buttons as of the last event that this program got. The window systems
/// that Qt runs on swap the buttons before a program sees them.
class QtMouse final : public Mouse {
 public:
  bool ButtonsSwapped() const override { return false; }
  bool IsDown(MouseKey button) const override;
};

}  // namespace orven
