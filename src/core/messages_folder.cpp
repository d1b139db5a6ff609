// SPDX-License-Identifier: GPL-3.0-or-later
#include "core/messages_folder.h"

#include <filesystem>

#include "base/paths.h"
#include "core/mdlReg.h"

namespace orven {

MessagesFolder ServingMessagesFolder(const std::string& stored, const SharedOptions& shared,
                                     const Files& files, bool moving) {
  const auto own = shared.InApplicationFolder("\\Messages\\");
  const bool full = std::filesystem::path(stored).is_absolute();
  if (full && (moving || files.Exists(FolderPart(stored)) || !files.Exists(own))) return {stored, ""};
  const auto fault = full                  ? "names a folder that is not there (" + stored + ")"
                     : stored == kNotFound ? "is missing"
                                           : "is no full path (\"" + stored + "\")";
  return {own, "The setting MassagesPath " + fault + ": messages are stored in " + own};
}

}  // namespace orven
