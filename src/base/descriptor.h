// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>
#include <string_view>
#include <utility>

namespace orven {

/// An open file, closed when it goes. Failures throw RuntimeError naming the path.
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

  /// Closes and reports what only closing tells (a full quota on a network file system).
  void Close();

 private:
  std::string path_;
  int number_ = -1;
};

}  // namespace orven
