// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <chrono>
#include <string>
#include <string_view>
#include <utility>

#include "base/runtime_error.h"

namespace orven {

/// An open file, closed by the destructor. Failures throw RuntimeError naming the path.
class Descriptor {
 public:
  /// open(2) with `flags` (O_CLOEXEC is added) and, for a new file, the permission bits `mode`.
  Descriptor(const std::string& path, int flags, unsigned mode = 0666);
  /// Takes over the open descriptor `number` of the file at `path`.
  Descriptor(int number, std::string path) : path_(std::move(path)), number_(number) {}
  Descriptor(const Descriptor&) = delete;
  Descriptor& operator=(const Descriptor&) = delete;
  ~Descriptor();

  int Number() const { return number_; }

  /// Writes all of `content`; on failure part of it may have been written.
  void Write(std::string_view content);

  /// Up to 64 KiB from the current position; empty at the end of the file.
  std::string Read();

  /// Waits until the file has reached the disk.
  void Sync();

  /// Closes, and reports the errors that only close(2) returns (a full quota on a network file system).
  void Close();

 private:
  std::string path_;
  int number_ = -1;
};

/// Shared by the adapters that keep files: atomic replacement, renaming without overwriting, and names for
/// files that are set aside. Failures throw RuntimeError with the path in the text. Any thread.

/// The classic error of the system error `error` (an errno value) at `path`.
RuntimeError FileFailure(int error, const std::string& path);

/// Gives the file at `path` the content `content` and the permission bits `mode`, atomically and durable on
/// return: a temporary file in the same folder is written, synced and renamed. Where `path` is a symbolic
/// link to a file, that file is replaced and the link stays.
void ReplaceFile(const std::string& path, std::string_view content, unsigned mode);

/// Writes a file that must not exist yet (58 when it does), durable on return.
void CreateFile(const std::string& path, std::string_view content, unsigned mode);

/// Copies the file `from`, with its permission bits, to `to`; atomic, and durable on return. With
/// `replace`, an existing `to` is replaced; otherwise 58 is thrown.
void CopyFile(const std::string& from, const std::string& to, bool replace);

/// Renames within one file system; throws 58 instead of replacing an existing `to`. False, without any
/// change, when the two are on different file systems.
bool RenameKeeping(const std::string& from, const std::string& to);

/// `path` + "." + `label` + "-" + local time, as in "Calls.damaged-20261121T041530"; if that name is taken,
/// alone or followed by "-wal" and so on, "-2", "-3" … are appended.
std::string NameToSetAside(const std::string& path, std::string_view label,
                           std::chrono::system_clock::time_point now = std::chrono::system_clock::now());

}  // namespace orven
