// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "platform/files.h"

namespace orven {

/// The files of the computer's own file systems. Copies, and moves between file systems, are durable on
/// return; an Append that meets a full disk leaves the file as it was. Only ASCII letters are compared
/// without regard to case.
class DiskFiles final : public Files {
 public:
  bool Exists(const std::string& path) const override;
  void Append(const std::string& path, std::string_view text) override;
  std::string Read(const std::string& path) const override;
  std::string ReadPart(const std::string& path, std::uint64_t offset, std::size_t size) const override;
  std::vector<std::string> List(const std::string& folder, std::string_view pattern) const override;
  std::chrono::system_clock::time_point LastModified(const std::string& path) const override;

  /// Removes a file; a folder is refused with 75.
  void Delete(const std::string& path) override;
  void Copy(const std::string& from, const std::string& to) override;
  void Rename(const std::string& from, const std::string& to) override;
  void MakeFolder(const std::string& path) override;
  std::uint64_t Room(const std::string& folder) const override;
};

/// `path`, or, if nothing exists there, the path of a file that differs from it only in the case of its
/// extension.
std::string PathInAnyCase(const std::string& path);

}  // namespace orven
