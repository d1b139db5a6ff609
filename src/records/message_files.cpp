// SPDX-License-Identifier: GPL-3.0-or-later
#include "records/message_files.h"

#include <algorithm>
#include <cstdint>
#include <filesystem>

#include "base/paths.h"
#include "core/mdlReg.h"

namespace orven {

std::string FirstThere(const Files& files, const std::vector<std::string>& paths) {
  if (paths.size() == 1) return paths.front();
  const auto there = std::ranges::find_if(paths, [&](const auto& path) { return files.Exists(path); });
  return there == paths.end() ? paths.front() : *there;
}

bool SameContent(const Files& files, const std::string& one, const std::string& other) {
  constexpr std::size_t kBlock = 1U << 16U;
  for (std::uint64_t offset = 0;;) {
    const auto left = files.ReadPart(one, offset, kBlock);
    const auto right = files.ReadPart(other, offset, kBlock);
    const auto size = std::min(left.size(), right.size());
    if (size == 0) return left.size() == right.size();
    if (left.compare(0, size, right, 0, size) != 0) return false;
    offset += size;
  }
}

void DeleteEverywhere(Files& files, const std::vector<std::string>& paths) {
  const auto path = FirstThere(files, paths);
  for (const auto& other : paths) {
    if (other != path && files.Exists(other) && SameContent(files, path, other)) files.Delete(other);
  }
  files.Delete(path);
}

void MessageFolders::Serve(const std::string& stored, bool moving) {
  serving_ = stored;
  note_ = {};
  const bool full = std::filesystem::path(stored).is_absolute();
  if (full && (moving || files_.Exists(FolderPart(stored)) || !files_.Exists(Own()))) return;
  serving_ = Own();
  Words note;
  if (full) {
    note =
        Words("The setting MassagesPath names a folder that does not exist (%2): messages are stored in %1");
  } else if (stored == kNotFound) {
    note = Words("The setting MassagesPath is missing: messages are stored in %1");
  } else {
    note = Words("The setting MassagesPath is not a full path (\"%2\"): messages are stored in %1");
  }
  note_ = std::move(note).Arg(serving_).Arg(stored);
  log_.WriteSystem(note_.English());
}

void MessageFolders::Moved(const std::string& folder) {
  serving_ = folder;
  next_.clear();
}

std::vector<std::string> MessageFolders::PlacesOf(const std::string& name) const {
  std::vector<std::string> places{serving_ + name};
  if (!next_.empty()) places.push_back(next_ + name);
  if (serving_ != Own() && next_ != Own()) places.push_back(Own() + name);
  return places;
}

std::string FreeNameBeside(const Files& files, Clock& clock, const std::string& path) {
  const auto now = clock.Now();
  const auto stem =
      path.substr(0, path.rfind('.')) + ".kept_" + FileStamp(clock.DateText(now), clock.TimeText(now));
  auto name = stem + ".wav";
  for (int number = 2; files.Exists(name); ++number) name = stem + "_" + std::to_string(number) + ".wav";
  return name;
}

std::string NameInFolder(const std::string& path, const std::string& folder) {
  const auto name = path.starts_with(folder) ? path.substr(folder.size()) : "";
  return name.empty() || name != FileNamePart(name) ? FileNamePart(path) : name;
}

}  // namespace orven
