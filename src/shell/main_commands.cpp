// SPDX-License-Identifier: GPL-3.0-or-later
#include "shell/main_commands.h"

#include "base/conversions.h"
#include "core/error_trap.h"

namespace orven {
namespace {

/// The ring box logs under the name of the record check box.
constexpr const char* kRingsLabel = "ErrchkRecMessage ";

}  // namespace

void QuickOptions::SetRecordMessage(bool on) {
  settings_.RecordMessage = on ? 1 : 0;
  store_.Set("RecordMessage", on ? "1" : "0");
}

void QuickOptions::SetRings(const std::string& text) {
  const ErrorTrap trap(log_, kRingsLabel);
  trap([&] {
    const auto count = ToInt16(text);
    store_.Set("NumOfRing", text);
    settings_.NumOfRing = count;
  });
}

void QuickOptions::SetGreeting(const std::string& name) {
  settings_.Greeting = name;
  store_.Set("Greeting", name);
}

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
  status_.ShowStatus(Words("No file is called \"%1\". To play or delete greetings, use Options, Answer Mode")
                         .Arg(boxes_.SelectedGreeting()));
}

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
  if (key == "Stop") parts_.player.PressStop();
}

void MainCommands::TBQuickOption_ButtonClick(const std::string& key) {
  if (key == "Play") parts_.greetings.Play();
  if (key == "Stop") parts_.greetings.Stop();
  if (key == "Add") DisplayGreetingCreator();
  if (key == "Delete") parts_.greetings.Delete();
}

void MainCommands::DisplayGreetingCreator() {
  OpenDialog(Dialog::frmGreetC);
}

void MainCommands::OpenDialog(Dialog dialog, int tab) {
  ErrorTrap::Silent()([&] { parts_.dialogs.Open(dialog, tab); });
}

void MainCommands::ShowPage(const std::string& page) {
  const auto target = parts_.home.Path("\\Help\\" + page + ".htm");
  if (parts_.shell.Open(target)) return;
  parts_.log.WriteSystem("Cannot open " + target);
  parts_.messages.Information(Words("No program on this computer opens %1").Arg(target));
}

}  // namespace orven
