// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/database/stray_log.h"

#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <string_view>
#include <system_error>
#include <vector>

#include "adapters/files/disk_files.h"

namespace orven {

namespace {

// https://www.sqlite.org/fileformat2.html
constexpr std::size_t kPageSizeAt = 8, kLogHeader = 32, kFrameHeader = 24;
constexpr std::size_t kFileHeader = 100;
constexpr std::string_view kFirstPage("\0\0\0\1", 4), kMagic = "SQLite format 3";

/// The number that MergeLog counts up in the first page, once for each merge.
std::uint32_t MergesIn(std::string_view page) {
  constexpr std::size_t kUserVersionAt = 60;
  std::uint32_t number = 0;
  for (const char byte : page.substr(std::min(page.size(), kUserVersionAt), 4))
    number = number << 8U | static_cast<unsigned char>(byte);
  return number;
}

/// All versions of the file's first page in a log.
std::vector<std::string> FirstPages(std::string_view log) {
  std::size_t size = 0;
  for (const char byte : log.substr(std::min(log.size(), kPageSizeAt), 4))
    size = size << 8U | static_cast<unsigned char>(byte);
  std::vector<std::string> pages;
  for (auto at = kLogHeader; size > 0 && at + kFrameHeader + size <= log.size(); at += kFrameHeader + size) {
    if (log.substr(at, kFirstPage.size()) == kFirstPage)
      pages.emplace_back(log.substr(at + kFrameHeader, size));
  }
  return pages;
}

}  // namespace

std::string LogBeside(const std::string& path) {
  std::error_code error;
  return std::filesystem::exists(path + "-wal", error) ? DiskFiles().Read(path + "-wal") : std::string();
}

bool HasStrayLog(const std::string& path) {
  std::error_code error;
  const auto size = std::filesystem::file_size(path, error);
  if (error || size == 0) return true;
  const std::string page = DiskFiles().ReadPart(path, 0, kFileHeader);
  // MergeLog counts in the log first, and the next merge brings that into the file. Other programs do not
  // count.
  const auto belongs = [&](const std::string& logged) { return MergesIn(logged) - MergesIn(page) <= 1; };
  const auto pages = FirstPages(LogBeside(path));
  return !pages.empty() && page.starts_with(kMagic) && std::ranges::none_of(pages, belongs);
}

bool LogIsEmpty(const std::string& path) {
  const std::string log = LogBeside(path);
  const auto pages = FirstPages(log);
  return log.empty() || (!pages.empty() && log.size() == kLogHeader + kFrameHeader + pages.front().size());
}

}  // namespace orven
