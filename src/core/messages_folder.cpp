// SPDX-License-Identifier: GPL-3.0-or-later
#include "core/messages_folder.h"

#include <filesystem>

#include "core/mdlReg.h"

namespace orven {

MessagesFolder ServingMessagesFolder(const std::string& stored, const SharedOptions& shared) {
  if (std::filesystem::path(stored).is_absolute()) return {stored, ""};
  const auto own = shared.InApplicationFolder("\\Messages\\");
  const auto fault = stored == kNotFound ? "is missing" : "is no full path (\"" + stored + "\")";
  return {own, "The setting MassagesPath " + fault + ": messages are stored in " + own};
}

}  // namespace orven
