// SPDX-License-Identifier: GPL-3.0-or-later
#include "shell/greeting_commands.h"

#include "core/error_trap.h"

namespace orven {

void GreetingCommands::Fill(const std::string& selected) {
  boxes_.FillGreetings(library_.Names(), selected);
}

void GreetingCommands::Play() {
  const auto path = library_.Folder() + boxes_.SelectedGreeting();
  if (!files_.Exists(path)) ShowNoFile();
  sounds_.PlayWave(path);
}

void GreetingCommands::Stop() {
  if (player_.IsPlaying()) player_.Stop();
}

void GreetingCommands::Delete() {
  const auto trap = ErrorTrap::Silent();
  const auto name = boxes_.SelectedGreeting();
  if (name.empty()) return;
  const auto path = library_.Folder() + name;
  if (!files_.Exists(path)) ShowNoFile();
  trap([&] { files_.Delete(path); });
  trap([&] { Fill(name); });
}

void GreetingCommands::ShowNoFile() {
  status_.ShowStatus("No file is called \"" + boxes_.SelectedGreeting() +
                     "\". Options, Answer Mode plays and deletes greetings");
}

}  // namespace orven
