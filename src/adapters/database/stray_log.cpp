// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/database/stray_log.h"

#include <algorithm>
#include <filesystem>
#include <string_view>
#include <system_error>
#include <vector>

#include "adapters/files/disk_files.h"

namespace orven {

namespace {

// https://www.sqlite.org/fileformat2.html
constexpr std::size_t kPageSizeAt = 8, kLogHeader = 32, kFrameHeader = 24;
constexpr std::string_view kFirstPage("\0\0\0\1", 4), kFileHeader = "SQLite format 3";

std::string LogBeside(const std::string& path) {
  std::error_code error;
  return std::filesystem::exists(path + "-wal", error) ? DiskFiles().Read(path + "-wal") : std::string();
}

/// All versions of the file's first page in a log that MergeLog began: the first one is the file's own.
std::vector<std::string> FirstPages(std::string_view log) {
  std::size_t size = 0;
  for (const char byte : log.substr(std::min(log.size(), kPageSizeAt), 4))
    size = size << 8U | static_cast<unsigned char>(byte);
  std::vector<std::string> pages;
  for (auto at = kLogHeader; at + kFrameHeader + size <= log.size(); at += kFrameHeader + size) {
    if (log.substr(at, kFirstPage.size()) == kFirstPage)
      pages.emplace_back(log.substr(at + kFrameHeader, size));
    if (pages.empty()) break;
  }
  return pages;
}

/// The first page without its counters of changes and SQLite's version.
std::string Comparable(std::string page) {
  for (const std::size_t counter : {96, 92, 24}) page.replace(std::min(counter, page.size()), 4, "");
  return page;
}

}  // namespace

bool HasStrayLog(const std::string& path) {
  std::error_code error;
  const auto size = std::filesystem::file_size(path, error);
  if (error || size == 0) return true;
  const auto pages = FirstPages(LogBeside(path));
  if (pages.empty()) return false;
  const std::string page = DiskFiles().ReadPart(path, 0, pages.front().size());
  // A damaged file still belongs to its log. A merge that was interrupted has stored a later version.
  return page.starts_with(kFileHeader) && std::ranges::none_of(pages, [&](const std::string& logged) {
           return Comparable(logged) == Comparable(page);
         });
}

bool LogIsEmpty(const std::string& path) {
  const std::string log = LogBeside(path);
  const auto pages = FirstPages(log);
  return log.empty() || (!pages.empty() && log.size() == kLogHeader + kFrameHeader + pages.front().size());
}

}  // namespace orven
