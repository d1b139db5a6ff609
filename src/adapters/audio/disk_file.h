// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string>

namespace orven {

/// One new file being written, with results of the wave control. It stays on disk when the object dies.
/// One thread at a time, but Sync may run beside anything else.
class DiskFile {
 public:
  /// Creates ".recording-<name>-<process>-<n>.wav.part" in `folder`, with the first n that is free; without
  /// a name, ".recording-<process>-<n>.wav.part". Such a name marks sound that was not finished or not
  /// filed; a listing of "*.wav" passes it over.
  static std::int32_t Create(const std::string& folder, const std::string& name,
                             std::shared_ptr<DiskFile>& file);

  ~DiskFile();
  DiskFile(const DiskFile&) = delete;
  DiskFile& operator=(const DiskFile&) = delete;

  /// Writes all of `bytes` at `offset`, or fails with a part of them written.
  std::int32_t WriteAt(std::size_t offset, std::span<const std::byte> bytes);

  /// Returns when everything written has reached the disk.
  std::int32_t Sync();

  /// Moves the file within its file system, replacing an older file.
  std::int32_t RenameTo(const std::string& path);

  /// Deletes the file.
  void Remove();

  /// False when somebody else has deleted the file, or its folder.
  bool IsThere() const;

  const std::string& Path() const { return path_; }

 private:
  DiskFile(std::string path, int descriptor);

  std::string path_;
  const int descriptor_;
};

/// The part of `path` up to its last separator, without it; "." when there is none.
std::string FolderOf(const std::string& path);

/// Makes created, renamed and deleted names in `folder` survive a loss of power.
std::int32_t SyncFolder(const std::string& folder);

}  // namespace orven
