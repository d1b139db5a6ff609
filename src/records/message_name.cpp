// SPDX-License-Identifier: GPL-3.0-or-later
#include "records/message_name.h"

#include "base/paths.h"

namespace orven {

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
