// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <functional>
#include <string>

#include "platform/dialogs.h"
#include "platform/mouse.h"
#include "platform/shell.h"
#include "records/list_commands.h"
#include "records/local_player.h"
#include "shell/dialog_factory.h"
#include "shell/greeting_commands.h"

namespace orven {

/// The pages of the guide that menus lead to: web pages in the folder "Help".
inline constexpr const char* kStartPage = "index";
inline constexpr const char* kGreetingsPage = "greetings";
inline constexpr const char* kSoundsPage = "sounds";

/// What the main window's toolbars, menus and list do. The window calls these; each acts on the
/// selected row where it needs one. A handler that fails leaves no trace and ends nothing.
/// User-interface thread.
class MainCommands {
 public:
  struct Parts {
    ListCommands& list;
    LocalPlayer& player;
    GreetingCommands& greetings;
    DialogFactory& dialogs;
    Dialogs& messages;
    Shell& shell;
    const SharedOptions& shared;
    SystemLog& log;
    std::function<void(bool on)> switch_line;
  };

  explicit MainCommands(Parts parts) : parts_(std::move(parts)) {}

  /// `Toolbar1`: the button with this key was pressed; `down` is the state of the two-state button
  /// "OnOff" after it. An unknown key does nothing.
  void Toolbar1_ButtonClick(const std::string& key, bool down = false);

  /// `ToolBarPlayer`: "Play", "Stop".
  void ToolBarPlayer_ButtonClick(const std::string& key);

  /// `TBQuickOption`: "Play", "Stop", "Add", "Delete".
  void TBQuickOption_ButtonClick(const std::string& key);

  /// `mnuGreetingCreator`.
  void DisplayGreetingCreator();

  /// Opens a dialog on one of its tabs.
  void OpenDialog(Dialog dialog, int tab = 0);
  bool Offers(Dialog dialog) const { return parts_.dialogs.Offers(dialog); }

  /// Opens a page of the guide with the desktop's browser; a box says when there is none.
  void ShowPage(const std::string& page);

 private:
  Parts parts_;
};

}  // namespace orven
