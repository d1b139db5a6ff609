// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <functional>
#include <limits>
#include <string>

#include "base/runtime_error.h"

namespace orven::test {

/// Counts what is written to a disk and fails at the write that a test names.
class FailingDisk {
 public:
  static constexpr std::uint64_t kForGood = std::numeric_limits<std::uint32_t>::max();

  /// Files that are written even so: a full disk has room for a line when it has none for a message.
  std::function<bool(const std::string& path)> spares = [](const std::string&) { return false; };
  /// The path of each write that failed.
  std::function<void(const std::string& path)> on_failure = [](const std::string&) {};

  /// The `number`-th write from now (1 is the next one) fails, and so do those after it, `count` in all.
  void FailAt(std::uint64_t number, std::uint64_t count = kForGood) {
    first_ = writes_ + number;
    beyond_ = first_ + count;
  }
  void Mend() { beyond_ = first_ = 0; }

  /// The next write would fail.
  bool Broken() const { return writes_ + 1 >= first_ && writes_ + 1 < beyond_; }
  std::uint64_t Writes() const { return writes_; }
  std::uint64_t Failures() const { return failures_; }

  /// Something is about to be written there. Throws RuntimeError 61 where that fails.
  void Write(const std::string& path) {
    if (spares(path)) return;
    const bool broken = Broken();
    ++writes_;
    if (!broken) return;
    ++failures_;
    on_failure(path);
    throw RuntimeError(ErrorNumber::DiskFull, path);
  }

 private:
  std::uint64_t writes_ = 0, failures_ = 0;
  std::uint64_t first_ = 0, beyond_ = 0;  ///< the writes that fail
};

}  // namespace orven::test
