// SPDX-License-Identifier: GPL-3.0-or-later
#include "shell/greeting_commands.h"

#include "core/error_trap.h"

namespace orven {

void GreetingCommands::Fill(const std::string& selected) {
  constexpr std::size_t kExtension = 4;  // ".wav"
  auto names = FileNames();
  for (auto& name : names) name.resize(name.size() - kExtension);
  boxes_.FillGreetings(names, selected);
}

void GreetingCommands::Play() {
  sounds_.PlayWave(Folder() + boxes_.SelectedGreeting());
}

void GreetingCommands::Stop() {
  if (player_.IsPlaying()) player_.Stop();
}

void GreetingCommands::Delete() {
  const auto trap = ErrorTrap::Silent();
  const auto name = boxes_.SelectedGreeting();
  if (name.empty()) return;
  trap([&] { files_.Delete(Folder() + name); });
  trap([&] { boxes_.FillGreetings(FileNames(), {}); });
}

std::vector<std::string> GreetingCommands::FileNames() const {
  return files_.List(Folder(), "*.wav");
}

std::string GreetingCommands::Folder() const {
  return shared_.InApplicationFolder("\\Greets\\");
}

}  // namespace orven
