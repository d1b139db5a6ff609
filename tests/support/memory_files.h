// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <functional>
#include <map>
#include <set>
#include <string>

#include "platform/clock.h"
#include "platform/files.h"

namespace orven::test {

/// A disk in memory. Folders exist unless they are named in `missing_folders`.
class MemoryFiles : public Files {
 public:
  explicit MemoryFiles(const Clock& clock) : clock_(clock) {}

  struct File {
    std::string content;
    Clock::WallTime modified;
  };

  /// Called before each operation that changes something; throws what the operation shall throw.
  std::function<void(const std::string& path)> before_write = [](const std::string&) {};
  /// Hears of every text that was appended.
  std::function<void(const std::string& path, std::string_view text)> on_append = [](const std::string&,
                                                                                     std::string_view) {};
  std::set<std::string> missing_folders;

  void Put(const std::string& path, std::string content) {
    files_[path] = {std::move(content), clock_.Now()};
  }
  void PutAt(const std::string& path, Clock::WallTime modified) { files_[path] = {"", modified}; }
  std::string Content(const std::string& path) const;
  std::vector<std::string> Names(const std::string& folder) const { return List(folder, "*"); }

  bool Exists(const std::string& path) const override {
    return path.ends_with('/') ? !missing_folders.contains(path) : files_.contains(path);
  }
  void Append(const std::string& path, std::string_view text) override;
  std::string Read(const std::string& path) const override { return At(path).content; }
  std::string ReadPart(const std::string& path, std::uint64_t offset, std::size_t size) const override {
    const auto& content = At(path).content;
    return offset < content.size() ? content.substr(offset, size) : "";
  }
  std::vector<std::string> List(const std::string& folder, std::string_view pattern) const override;
  std::chrono::system_clock::time_point LastModified(const std::string& path) const override {
    return At(path).modified;
  }
  void Delete(const std::string& path) override;
  void Copy(const std::string& from, const std::string& to) override;
  void Rename(const std::string& from, const std::string& to) override;
  void MakeFolder(const std::string& /*path*/) override {}

 private:
  void CheckFolderOf(const std::string& path) const;
  const File& At(const std::string& path) const;

  const Clock& clock_;
  std::map<std::string, File> files_;
};

}  // namespace orven::test
