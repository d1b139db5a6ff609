// SPDX-License-Identifier: GPL-3.0-or-later
#include "base/paths.h"

#include <algorithm>
#include <filesystem>

namespace orven {

std::string NativePath(std::string_view text) {
  constexpr auto kSeparator = static_cast<char>(std::filesystem::path::preferred_separator);
  std::string path(text);
  std::replace(path.begin(), path.end(), '\\', kSeparator);
  return path;
}

std::string FileNamePart(std::string_view path) {
  const auto separator = path.find_last_of(NativePath("\\"));
  return std::string(separator == std::string_view::npos ? path : path.substr(separator + 1));
}

std::string FolderPart(std::string_view path) {
  return std::string(path.substr(0, path.size() - FileNamePart(path).size()));
}

std::string FolderOf(const std::string& path) {
  const std::string folder = std::filesystem::path(path).parent_path().string();
  return folder.empty() ? "." : folder;
}

std::string FileStamp(std::string date, std::string time) {
  std::replace(date.begin(), date.end(), '/', '-');
  std::replace(time.begin(), time.end(), ':', '-');
  return time.empty() ? date : date + "_" + time;
}

}  // namespace orven
