// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace orven {

/// The few file operations the engine needs. Paths are UTF-8 with the platform's own separators.
/// Failures throw RuntimeError with the classic number (53 not found, 61 disk full, 70 permission
/// denied, 75/76 path) and the path in the text. The case of a file's extension does not matter: if there is
/// no "x.wav", the path means "x.WAV". Any thread.
class Files {
 public:
  virtual ~Files() = default;

  virtual bool Exists(const std::string& path) const = 0;

  /// Opens (creating it if missing), appends, closes: on return the text is in the operating system's cache
  /// at least.
  virtual void Append(const std::string& path, std::string_view text) = 0;

  /// The whole content.
  virtual std::string Read(const std::string& path) const = 0;

  /// Up to `size` bytes of the content from the position `offset`, perhaps fewer; none at the end.
  virtual std::string ReadPart(const std::string& path, std::uint64_t offset, std::size_t size) const = 0;

  /// Names (no folder) of the regular files in `folder` whose name matches `pattern`, in order: numbers in
  /// them by value, without regard to case. The pattern may have one "*", which matches any run of
  /// characters; case does not matter, and "*.*" matches every name.
  virtual std::vector<std::string> List(const std::string& folder, std::string_view pattern) const = 0;

  virtual std::chrono::system_clock::time_point LastModified(const std::string& path) const = 0;

  virtual void Delete(const std::string& path) = 0;

  /// Copies the content of `from` to `to`, replacing an existing file completely or not at all.
  virtual void Copy(const std::string& from, const std::string& to) = 0;

  /// Moves `from` to `to`, also across file systems; throws 58 when `to` exists.
  virtual void Rename(const std::string& from, const std::string& to) = 0;

  /// Creates the folder and its parents; an existing folder is success.
  virtual void MakeFolder(const std::string& path) = 0;

  /// Bytes that this user can still write into the folder's file system. May wait for a network.
  virtual std::uint64_t Room(const std::string& folder) const = 0;
};

}  // namespace orven
