// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <sys/types.h>

#include <chrono>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace orven::test {

/// A folder that goes with the test.
class TemporaryFolder {
 public:
  TemporaryFolder();
  ~TemporaryFolder();
  std::string Path(const std::string& name) const { return (path_ / name).string(); }
  /// Writes a file and gives its path.
  std::string Write(const std::string& name, const std::string& content) const;

 private:
  std::filesystem::path path_;
};

/// Another program, run for a test: killed with the test when it has not ended by then. What it prints
/// goes to `output`.
class Program {
 public:
  Program(const std::vector<std::string>& command, const std::string& output);
  Program(const Program&) = delete;
  Program& operator=(const Program&) = delete;
  ~Program();

  /// Its exit code, nothing when it still runs after `limit`.
  std::optional<int> Wait(std::chrono::milliseconds limit);

 private:
  pid_t pid_ = -1;
};

/// True when the program is installed.
bool IsInstalled(const std::string& program);

}  // namespace orven::test
