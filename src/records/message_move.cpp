// SPDX-License-Identifier: GPL-3.0-or-later
#include "records/message_move.h"

#include <array>

#include "core/mdlReg.h"
#include "core/settings_store.h"

namespace orven {
namespace {

constexpr auto kRoot = RegistryRoot::LocalMachine;

}  // namespace

void MessageMove::Begin(const std::string& folder) {
  if (parts_.calls.Relocating() || !MayLeave(folder)) return;
  if (folder != parts_.shared.messages_path) return Run(folder, false);
  parts_.folders.SetNext({});
  Finish();
}

void MessageMove::GoOn() {
  const auto folder = GetRegValue(parts_.registry, kRoot, kSettingsKey, kMoveUnderWay);
  if (folder == kNotFound || folder.empty() || folder == parts_.shared.messages_path) return;
  parts_.folders.SetNext(folder);
  Run(folder, true);
}

bool MessageMove::MayLeave(const std::string& folder) {
  const auto next = parts_.folders.Next();
  if (next.empty() || next == folder) return true;
  const bool left =
      parts_.dialogs.Confirm("The move of the messages to " + next +
                             " was broken off. Messages that are there already stay there, " +
                             "and cannot be played any more. To take them along, choose " + next +
                             " first.\n\nLeave them there, and store the messages in " + folder + " ?");
  if (left) parts_.log.WriteSystem("Messages were left in " + next);
  return left;
}

void MessageMove::Run(const std::string& folder, bool going_on) {
  parts_.calls.RelocateMessages(
      folder, {[this, folder] { return Store(kMoveUnderWay, folder); }, [this] { Finish(); }}, going_on);
}

bool MessageMove::Store(const std::string& name, const std::string& folder) {
  return parts_.registry.Write(kRoot, kSettingsKey, std::array{RegString(name, folder)});
}

void MessageMove::Finish() {
  const auto& folder = parts_.shared.messages_path;
  if (Store("MassagesPath", folder))
    return DeleteRegValue(parts_.registry, kRoot, kSettingsKey, kMoveUnderWay);
  parts_.dialogs.Information("The messages are in " + folder +
                             "\n\nThis could not be stored; the system log tells more. It is stored at the "
                             "next start when the settings can be written then.");
}

}  // namespace orven
