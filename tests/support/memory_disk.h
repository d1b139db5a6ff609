// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <fnmatch.h>

#include <cstdint>
#include <functional>
#include <limits>
#include <map>
#include <set>
#include <string>
#include <utility>

#include "base/runtime_error.h"
#include "core/mdlReg.h"
#include "platform/clock.h"
#include "platform/files.h"
#include "platform/registry.h"

namespace orven::test {

/// Counts the writes to a disk. The writes that the test chooses fail.
class FailingDisk {
 public:
  static constexpr std::uint64_t kForGood = std::numeric_limits<std::uint32_t>::max();

  /// Returns true for files whose writes never fail: a full disk may have room for a log line only.
  std::function<bool(const std::string& path)> spares = [](const std::string&) { return false; };
  /// Called with the path of each failed write.
  std::function<void(const std::string& path)> on_failure = [](const std::string&) {};

  /// Makes `count` writes fail, starting with the `number`-th from now (1 is the next one).
  void FailAt(std::uint64_t number, std::uint64_t count = kForGood) {
    first_ = writes_ + number;
    beyond_ = first_ + count;
  }
  void Mend() { beyond_ = first_ = 0; }

  std::uint64_t Failures() const { return failures_; }

  /// Counts a write to `path`. Throws RuntimeError 61 if it has to fail.
  void Write(const std::string& path) {
    if (spares(path)) return;
    ++writes_;
    if (writes_ < first_ || writes_ >= beyond_) return;
    ++failures_;
    on_failure(path);
    throw RuntimeError(ErrorNumber::DiskFull, path);
  }

 private:
  std::uint64_t writes_ = 0, failures_ = 0;
  std::uint64_t first_ = 0, beyond_ = 0;  ///< the range of writes that fail
};

/// Files in memory. All folders exist except `missing_folders`.
class MemoryFiles : public Files {
 public:
  explicit MemoryFiles(const Clock& clock) : clock_(clock) {}

  struct File {
    std::string content;
    Clock::WallTime modified;
  };

  /// Called before each change. If it throws, the change fails with that exception.
  std::function<void(const std::string& path)> before_write = [](const std::string&) {};
  /// Called after each append.
  std::function<void(const std::string& path, std::string_view text)> on_append = [](const std::string&,
                                                                                     std::string_view) {};
  std::set<std::string> missing_folders;
  FailingDisk disk;  ///< the disk that holds the files

  /// Throws if a write to `path` has to fail.
  void BeforeWrite(const std::string& path) {
    disk.Write(path);
    before_write(path);
  }
  void Put(const std::string& path, std::string content) {
    files_[path] = {std::move(content), clock_.Now()};
  }
  void PutAt(const std::string& path, Clock::WallTime modified) { files_[path] = {"", modified}; }
  std::string Content(const std::string& path) const { return Exists(path) ? At(path).content : ""; }
  std::vector<std::string> Names(const std::string& folder) const { return List(folder, "*"); }

  bool Exists(const std::string& path) const override {
    return path.ends_with('/') ? !missing_folders.contains(path) : files_.contains(path);
  }
  void Append(const std::string& path, std::string_view text) override {
    BeforeWrite(path);
    CheckFolderOf(path);
    auto& file = files_[path];
    file.content += text;
    file.modified = clock_.Now();
    on_append(path, text);
  }
  std::string Read(const std::string& path) const override { return At(path).content; }
  std::string ReadPart(const std::string& path, std::uint64_t offset, std::size_t size) const override {
    const auto& content = At(path).content;
    return offset < content.size() ? content.substr(offset, size) : "";
  }
  std::vector<std::string> List(const std::string& folder, std::string_view pattern) const override {
    CheckFolderOf(folder);
    const std::string glob(pattern == "*.*" ? "*" : pattern);
    std::vector<std::string> names;
    for (auto file = files_.lower_bound(folder); file != files_.end() && file->first.starts_with(folder);
         ++file) {
      const auto name = file->first.substr(folder.size());
      if (name.find('/') == name.npos && fnmatch(glob.c_str(), name.c_str(), 0) == 0) names.push_back(name);
    }
    return names;
  }
  Clock::WallTime LastModified(const std::string& path) const override { return At(path).modified; }
  void Delete(const std::string& path) override {
    BeforeWrite(path);
    At(path);
    files_.erase(path);
  }
  void Copy(const std::string& from, const std::string& to) override {
    BeforeWrite(to);
    files_[to] = At(from);
  }
  void Rename(const std::string& from, const std::string& to) override {
    BeforeWrite(to);
    if (Exists(to)) throw RuntimeError(ErrorNumber::FileAlreadyExists);
    files_[to] = At(from);
    files_.erase(from);
  }
  void MakeFolder(const std::string& /*path*/) override {}
  std::uint64_t room = 1'000'000'000;  ///< what Room says
  std::uint64_t Room(const std::string& /*folder*/) const override { return room; }

 private:
  void CheckFolderOf(const std::string& path) const {
    const auto folder = path.substr(0, path.rfind('/') + 1);
    if (missing_folders.contains(folder)) throw RuntimeError(ErrorNumber::PathNotFound, folder);
  }
  const File& At(const std::string& path) const {
    const auto file = files_.find(path);
    if (file == files_.end()) throw RuntimeError(ErrorNumber::FileNotFound);
    return file->second;
  }

  const Clock& clock_;
  std::map<std::string, File> files_;
};

/// A registry in memory. Keys and names are case-sensitive.
class MemoryRegistry : public Registry {
 public:
  bool refuse_writes = false;
  /// Called before each change. If it returns false, the change fails.
  std::function<bool()> writable = [] { return true; };
  /// The names of the values that were changed, in order.
  std::vector<std::string> changed;

  void Set(const std::string& name, const std::string& text) {
    keys_[{RegistryRoot::LocalMachine, kSettingsKey}][name] = RegString(name, text).value;
  }
  std::string Text(const std::string& name, const std::string& key = kSettingsKey) {
    return GetRegValue(*this, RegistryRoot::LocalMachine, key, name);
  }
  void MakeKey(const std::string& key) { keys_[{RegistryRoot::LocalMachine, key}]; }

  bool KeyExists(RegistryRoot root, const std::string& key) override { return keys_.contains({root, key}); }
  std::optional<RegistryValue> Query(RegistryRoot root, const std::string& key,
                                     const std::string& name) override {
    const auto values = keys_.find({root, key});
    if (values == keys_.end() || !values->second.contains(name)) return std::nullopt;
    return values->second.at(name);
  }
  bool Write(RegistryRoot root, const std::string& key, std::span<const NamedRegistryValue> values) override {
    if (refuse_writes || !writable()) return false;
    for (const auto& [name, value] : values) {
      keys_[{root, key}][name] = value;
      changed.push_back(name);
    }
    return true;
  }
  bool Delete(RegistryRoot root, const std::string& key, const std::string& name) override {
    return !refuse_writes && writable() && keys_[{root, key}].erase(name) > 0;
  }

 private:
  std::map<std::pair<RegistryRoot, std::string>, std::map<std::string, RegistryValue>> keys_;
};

}  // namespace orven::test
