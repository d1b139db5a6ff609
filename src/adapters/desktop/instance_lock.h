// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>

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

}  // namespace orven
