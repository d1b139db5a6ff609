// SPDX-License-Identifier: GPL-3.0-or-later
#include "shell/main_commands.h"

#include "core/error_trap.h"

namespace orven {

void MainCommands::Toolbar1_ButtonClick(const std::string& key, bool down) {
  auto& list = parts_.list;
  if (key == "OnOff") parts_.switch_line(down);
  if (key == "Back") list.Back();
  if (key == "Next") list.Next();
  if (key == "Save") list.Save();
  if (key == "Delete") list.Delete();
  if (key == "Clear") list.Clear();
  if (key == "Log") OpenDialog(Dialog::frmLog);
  if (key == "Events") OpenDialog(Dialog::frmEvents);
  if (key == "Actions") OpenDialog(Dialog::frmActions);
  if (key == "Options") OpenDialog(Dialog::frmOptions);
}

void MainCommands::ToolBarPlayer_ButtonClick(const std::string& key) {
  const auto trap = ErrorTrap::Silent();
  if (key == "Play") trap([&] { parts_.player.Play(); });
  if (key == "Stop") trap([&] { parts_.player.PressStop(); });
}

void MainCommands::TBQuickOption_ButtonClick(const std::string& key) {
  const auto trap = ErrorTrap::Silent();
  if (key == "Play") trap([&] { parts_.greetings.Play(); });
  if (key == "Stop") trap([&] { parts_.greetings.Stop(); });
  if (key == "Add") DisplayGreetingCreator();
  if (key == "Delete") parts_.greetings.Delete();
}

void MainCommands::DisplayGreetingCreator() {
  OpenDialog(Dialog::frmGreetC);
}

void MainCommands::OpenDialog(Dialog dialog, int tab) {
  const auto trap = ErrorTrap::Silent();
  trap([&] {
    if (Offers(dialog)) parts_.dialogs.Open(dialog, tab);
  });
}

void MainCommands::ShowPage(const std::string& page) {
  const auto trap = ErrorTrap::Silent();
  trap([&] {
    const auto target = parts_.shared.InApplicationFolder("\\Help\\" + page + ".htm");
    if (parts_.shell.Open(target)) return;
    parts_.log.WriteSystem("Cannot open " + target);
    parts_.messages.Information("Nothing on this computer opens " + target);
  });
}

}  // namespace orven
