// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <condition_variable>
#include <cstddef>
#include <mutex>
#include <optional>
#include <string>

namespace orven::testing {

/// A disk that misbehaves for the files below one folder. While such an object lives, this program's
/// own read, pwrite and fdatasync ask it first; the code under test knows nothing of it.
class DiskFaults {
 public:
  explicit DiskFaults(const std::string& folder);
  ~DiskFaults();
  DiskFaults(const DiskFaults&) = delete;
  DiskFaults& operator=(const DiskFaults&) = delete;

  /// No file can grow beyond `bytes`; what fits of a write is written, as on a full disk.
  void LimitSize(std::optional<std::size_t> bytes);

  /// Syncing fails with this error number (0: works).
  void FailSync(int error);

  /// Reads from `offset` on, or syncs, do not return before Release.
  void HoldReads(std::size_t offset);
  void HoldSyncs();
  void Release();

  /// Something is being held now.
  bool Holds();

  // What the functions of the C library ask.
  void BeforeRead(std::size_t offset);
  std::size_t Writable(std::size_t offset, std::size_t count);
  int BeforeSync();

  static DiskFaults* Of(int descriptor);

 private:
  void Wait(std::unique_lock<std::mutex>& lock, const bool& held_back);

  const std::string folder_;
  std::mutex mutex_;
  std::condition_variable released_;
  std::optional<std::size_t> limit_;
  std::size_t reads_from_ = 0;
  int sync_error_ = 0;
  bool hold_reads_ = false;
  bool hold_syncs_ = false;
  int holding_ = 0;
};

}  // namespace orven::testing
