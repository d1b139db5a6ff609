// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <sys/resource.h>

#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <system_error>

namespace orven::test {

/// A temporary folder for one test. The destructor deletes it with its contents.
class ScratchFolder {
 public:
  explicit ScratchFolder(const std::string& parent = std::filesystem::temp_directory_path().string())
      : path_(parent + "/orven-test-XXXXXX") {
    if (::mkdtemp(path_.data()) == nullptr) std::abort();
  }
  ScratchFolder(const ScratchFolder&) = delete;
  ~ScratchFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
  }

  const std::string& Path() const { return path_; }
  std::string operator/(const std::string& name) const { return path_ + "/" + name; }

  /// Counts the files whose names begin with `prefix`.
  std::size_t Count(const std::string& prefix) const {
    std::size_t count = 0;
    for (const auto& entry : std::filesystem::directory_iterator(path_)) {
      count += entry.path().filename().string().starts_with(prefix) ? 1U : 0U;
    }
    return count;
  }

 private:
  std::string path_;
};

inline std::string ContentOf(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

inline void PutFile(const std::string& path, const std::string& content) {
  std::ofstream(path, std::ios::binary | std::ios::trunc) << content;
}

/// Limits every file that this process writes to `bytes`, until destroyed. Simulates a full disk.
class FileSizeLimit {
 public:
  explicit FileSizeLimit(rlim_t bytes) {
    std::signal(SIGXFSZ, SIG_IGN);
    ::getrlimit(RLIMIT_FSIZE, &before_);
    const rlimit limit{bytes, before_.rlim_max};
    ::setrlimit(RLIMIT_FSIZE, &limit);
  }
  FileSizeLimit(const FileSizeLimit&) = delete;
  ~FileSizeLimit() { ::setrlimit(RLIMIT_FSIZE, &before_); }

 private:
  rlimit before_{};
};

}  // namespace orven::test
