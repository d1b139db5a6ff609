// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/files/disk_files.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <system_error>

#include "base/durable_file.h"
#include "base/text.h"

namespace orven {

namespace fs = std::filesystem;

namespace {

/// The error for a failed folder operation: "path not found" if the folder is missing, else as for a file.
RuntimeError FolderFailure(const std::error_code& error, const std::string& path) {
  if (error.value() == ENOENT) return {ErrorNumber::PathNotFound, path};
  return FileFailure(error.value(), path);
}

/// By the rules of Files::List.
bool MatchesPattern(std::string_view name, std::string_view pattern) {
  if (pattern == "*.*") return true;
  const auto folded = Lower(name);
  const auto star = pattern.find('*');
  if (star == pattern.npos) return folded == Lower(pattern);
  return name.size() + 1 >= pattern.size() && folded.starts_with(Lower(pattern.substr(0, star))) &&
         folded.ends_with(Lower(pattern.substr(star + 1)));
}

bool IsDigit(char letter) {
  return letter >= '0' && letter <= '9';
}

/// Removes the number at the beginning of `text` and returns it without leading zeros.
std::string_view TakeNumber(std::string_view& text) {
  text.remove_prefix(std::min(text.find_first_not_of('0'), text.size()));
  const auto end = std::find_if_not(text.begin(), text.end(), IsDigit);
  const auto number = text.substr(0, static_cast<std::size_t>(end - text.begin()));
  text.remove_prefix(number.size());
  return number;
}

/// Whether a file name comes before another one in Files::List; names that differ in case or in leading zeros
/// only are ordered by their bytes.
bool ComesBefore(std::string_view name, std::string_view other) {
  const auto folded = Lower(name);
  const auto other_folded = Lower(other);
  std::string_view left = folded;
  std::string_view right = other_folded;
  while (!left.empty() && !right.empty()) {
    if (IsDigit(left.front()) && IsDigit(right.front())) {
      const auto one = TakeNumber(left);
      const auto two = TakeNumber(right);
      if (one.size() != two.size()) return one.size() < two.size();
      if (one != two) return one < two;
      continue;
    }
    const auto one = static_cast<unsigned char>(left.front());
    const auto two = static_cast<unsigned char>(right.front());
    if (one != two) return one < two;
    left.remove_prefix(1);
    right.remove_prefix(1);
  }
  return left.empty() && right.empty() ? name < other : left.empty();
}

}  // namespace

bool DiskFiles::Exists(const std::string& path) const {
  std::error_code error;
  return fs::exists(PathInAnyCase(path), error);
}

void DiskFiles::Append(const std::string& path, std::string_view text) {
  const int number = ::open(path.c_str(), O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC, 0666);
  if (number < 0) throw FolderFailure({errno, std::generic_category()}, path);
  Descriptor file(number, path);
  const off_t before = ::lseek(number, 0, SEEK_END);
  try {
    file.Write(text);
  } catch (const RuntimeError&) {
    // Removes a partial line; it stays if this fails too.
    if (before >= 0 && ::ftruncate(number, before) != 0) errno = 0;
    throw;
  }
  file.Close();
}

std::string DiskFiles::Read(const std::string& path) const {
  Descriptor file(PathInAnyCase(path), O_RDONLY);
  std::string content;
  for (std::string block = file.Read(); !block.empty(); block = file.Read()) content += block;
  return content;
}

std::string DiskFiles::ReadPart(const std::string& path, std::uint64_t offset, std::size_t size) const {
  const Descriptor file(PathInAnyCase(path), O_RDONLY);
  std::string part(size, '\0');
  ssize_t count = -1;
  do {
    count = ::pread(file.Number(), part.data(), size, static_cast<off_t>(offset));
  } while (count < 0 && errno == EINTR);
  if (count < 0) throw FileFailure(errno, path);
  part.resize(static_cast<std::size_t>(count));
  return part;
}

std::vector<std::string> DiskFiles::List(const std::string& folder, std::string_view pattern) const {
  std::vector<std::string> names;
  std::error_code error;
  fs::directory_iterator entry(folder, error);
  for (; !error && entry != fs::directory_iterator(); entry.increment(error)) {
    std::string name = entry->path().filename().string();
    std::error_code gone;  // A file that is deleted meanwhile is not listed.
    if (MatchesPattern(name, pattern) && entry->is_regular_file(gone)) names.push_back(std::move(name));
  }
  if (error) throw FolderFailure(error, folder);
  std::ranges::sort(names, ComesBefore);
  return names;
}

std::chrono::system_clock::time_point DiskFiles::LastModified(const std::string& path) const {
  std::error_code error;
  const fs::file_time_type time = fs::last_write_time(PathInAnyCase(path), error);
  if (error) throw FileFailure(error.value(), path);
  return std::chrono::time_point_cast<std::chrono::system_clock::duration>(
      std::chrono::file_clock::to_sys(time));
}

void DiskFiles::Delete(const std::string& path) {
  if (::unlink(PathInAnyCase(path).c_str()) != 0) throw FileFailure(errno, path);
}

void DiskFiles::Copy(const std::string& from, const std::string& to) {
  const auto source = PathInAnyCase(from);
  const auto replaced = PathInAnyCase(to);
  std::error_code error;
  if (fs::equivalent(source, replaced, error)) return;
  CopyFile(source, to, true);
  if (replaced != to) Delete(replaced);
}

void DiskFiles::Rename(const std::string& from, const std::string& to) {
  const auto source = PathInAnyCase(from);
  if (PathInAnyCase(to) != to) throw FileFailure(EEXIST, to);
  if (RenameKeeping(source, to)) return;
  CopyFile(source, to, false);
  try {
    Delete(source);
  } catch (const RuntimeError&) {
    // The file must not exist twice.
    if (Exists(source)) ::unlink(to.c_str());
    throw;
  }
}

void DiskFiles::MakeFolder(const std::string& path) {
  std::error_code error;
  fs::create_directories(path, error);
  if (error) throw FolderFailure(error, path);
  if (!fs::is_directory(path, error))
    throw RuntimeError(ErrorNumber::PathAccessError, path + " (not a folder)");
}

std::uint64_t DiskFiles::Room(const std::string& folder) const {
  std::error_code error;
  const auto room = fs::space(folder, error);
  if (error) throw FolderFailure(error, folder);
  return room.available;
}

namespace {

bool IsThere(const std::string& path) {
  return ::access(path.c_str(), F_OK) == 0;
}

}  // namespace

std::string PathInAnyCase(const std::string& path) {
  constexpr std::size_t kLongest = 4;  // letters; each one doubles the number of names to try
  const auto dot = path.rfind('.');
  if (dot == path.npos || path.size() - dot - 1 > kLongest || path.find('/', dot) != path.npos) return path;
  if (IsThere(path)) return path;
  const auto lower = Lower(path.substr(dot + 1));
  const auto letters = static_cast<unsigned>(lower.size());
  for (unsigned upper = 0; upper < 1U << letters; ++upper) {
    auto there = path;
    for (unsigned i = 0; i < letters; ++i) {
      const bool capital = lower[i] >= 'a' && lower[i] <= 'z' && (upper >> i & 1U) != 0;
      there[dot + 1 + i] = static_cast<char>(lower[i] - (capital ? 'a' - 'A' : 0));
    }
    if (IsThere(there)) return there;
  }
  return path;
}

}  // namespace orven
