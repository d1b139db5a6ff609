// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <functional>
#include <string>

#include "base/paths.h"
#include "core/settings_store.h"
#include "greetings/greeting_library.h"
#include "notify/desk_sounds.h"
#include "platform/dialogs.h"
#include "platform/files.h"
#include "platform/shell.h"
#include "records/call_store.h"
#include "records/list_commands.h"
#include "records/local_player.h"
#include "shell/main_window_view.h"

namespace orven {

/// The dialogs that the main window opens.
enum class Dialog { frmLog, frmEvents, frmActions, frmOptions, frmGreetC, frmAbout, frmSetup, frmCheckUp };

/// Opens the main window's dialogs, modally. User-interface thread.
class DialogFactory {
 public:
  virtual ~DialogFactory() = default;

  /// Opens it on the tab with this 0-based index; dialogs without tabs ignore it.
  virtual void Open(Dialog dialog, int tab) = 0;
};

/// Stores the choices on the quick-option toolbar; the next step of a call uses them. User-interface thread.
class QuickOptions {
 public:
  QuickOptions(SettingsStore& store, SystemLog& log, Settings& settings)
      : store_(store), log_(log), settings_(settings) {}

  /// `chkRecMessage` was clicked.
  void SetRecordMessage(bool on);

  /// A ring count was chosen in `cmbRings`; a text that is not a number is logged and changes nothing.
  void SetRings(const std::string& text);

  /// A greeting was chosen in `cmbDefGreet`.
  void SetGreeting(const std::string& name);

 private:
  SettingsStore& store_;
  SystemLog& log_;
  Settings& settings_;
};

/// What the buttons of the quick-option toolbar do with greetings. User-interface thread.
class GreetingCommands {
 public:
  GreetingCommands(const GreetingLibrary& library, MessagePlayer& player, DeskSounds& sounds,
                   QuickOptionBoxes& boxes, Files& files, LineView& status)
      : library_(library), player_(player), sounds_(sounds), boxes_(boxes), files_(files), status_(status) {}

  /// Fills `cmbDefGreet` with the greetings' names and selects `selected`; see
  /// QuickOptionBoxes::FillGreetings.
  void Fill(const std::string& selected);

  /// Plays the file whose name is exactly the text in `cmbDefGreet`. Greeting files also have ".wav", so the
  /// file usually does not exist; the status bar then says where greetings can be played.
  void Play();

  /// Stops what the sound card plays.
  void Stop();

  /// Deletes the file that Play would play, without asking, and fills the box again.
  void Delete();

 private:
  void ShowNoFile();

  const GreetingLibrary& library_;
  MessagePlayer& player_;
  DeskSounds& sounds_;
  QuickOptionBoxes& boxes_;
  Files& files_;
  LineView& status_;
};

/// The pages of the guide that menus lead to: web pages in the folder "Help".
inline constexpr const char* kStartPage = "index";
inline constexpr const char* kGreetingsPage = "greetings";
inline constexpr const char* kSoundsPage = "sounds";

/// The commands of the main window's toolbars and menus; those about a call act on the selected row. A
/// command that fails is ignored. User-interface thread.
class MainCommands {
 public:
  struct Parts {
    ListCommands& list;
    LocalPlayer& player;
    GreetingCommands& greetings;
    DialogFactory& dialogs;
    Dialogs& messages;
    Shell& shell;
    const ApplicationFolder& home;
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

  /// Opens a page of the guide in the desktop's browser; a box says so when it does not exist.
  void ShowPage(const std::string& page);

 private:
  Parts parts_;
};

}  // namespace orven
