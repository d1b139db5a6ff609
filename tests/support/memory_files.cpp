// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/memory_files.h"

#include "base/runtime_error.h"

namespace orven::test {
namespace {

bool Matches(std::string_view name, std::string_view pattern) {
  if (pattern == "*.*") pattern = "*";
  if (pattern.empty()) return name.empty();
  if (pattern.front() == '*') {
    return Matches(name, pattern.substr(1)) || (!name.empty() && Matches(name.substr(1), pattern));
  }
  return !name.empty() && name.front() == pattern.front() && Matches(name.substr(1), pattern.substr(1));
}

}  // namespace

void MemoryFiles::CheckFolderOf(const std::string& path) const {
  const auto folder = path.substr(0, path.rfind('/') + 1);
  if (missing_folders.contains(folder)) throw RuntimeError(ErrorNumber::PathNotFound, folder);
}

const MemoryFiles::File& MemoryFiles::At(const std::string& path) const {
  const auto file = files_.find(path);
  if (file == files_.end()) throw RuntimeError(ErrorNumber::FileNotFound);
  return file->second;
}

std::string MemoryFiles::Content(const std::string& path) const {
  return Exists(path) ? At(path).content : "";
}

void MemoryFiles::Append(const std::string& path, std::string_view text) {
  before_write(path);
  CheckFolderOf(path);
  auto& file = files_[path];
  file.content += text;
  file.modified = clock_.Now();
  on_append(path, text);
}

std::vector<std::string> MemoryFiles::List(const std::string& folder, std::string_view pattern) const {
  CheckFolderOf(folder);
  std::vector<std::string> names;
  for (auto file = files_.lower_bound(folder); file != files_.end() && file->first.starts_with(folder);
       ++file) {
    auto name = file->first.substr(folder.size());
    if (name.find('/') == std::string::npos && Matches(name, pattern)) names.push_back(std::move(name));
  }
  return names;
}

void MemoryFiles::Delete(const std::string& path) {
  before_write(path);
  At(path);
  files_.erase(path);
}

void MemoryFiles::Copy(const std::string& from, const std::string& to) {
  before_write(to);
  files_[to] = At(from);
}

void MemoryFiles::Rename(const std::string& from, const std::string& to) {
  before_write(to);
  if (Exists(to)) throw RuntimeError(ErrorNumber::FileAlreadyExists);
  files_[to] = At(from);
  files_.erase(from);
}

}  // namespace orven::test
