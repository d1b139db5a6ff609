// SPDX-License-Identifier: GPL-3.0-or-later
#include "shell/greeting_commands.h"

#include "core/error_trap.h"

namespace orven {

void GreetingCommands::Fill(const std::string& selected) {
  boxes_.FillGreetings(library_.Names(), selected);
}

void GreetingCommands::Play() {
  sounds_.PlayWave(library_.Folder() + boxes_.SelectedGreeting());
}

void GreetingCommands::Stop() {
  if (player_.IsPlaying()) player_.Stop();
}

void GreetingCommands::Delete() {
  const auto trap = ErrorTrap::Silent();
  const auto name = boxes_.SelectedGreeting();
  if (name.empty()) return;
  trap([&] { files_.Delete(library_.Folder() + name); });
  trap([&] { boxes_.FillGreetings(library_.FileNames(), {}); });
}

}  // namespace orven
