// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <functional>
#include <memory>

#include "base/paths.h"
#include "core/mMain.h"
#include "platform/operating_system.h"
#include "shell/answering_machine.h"
#include "shell/main_commands.h"

namespace orven {

/// The engine half of the main window `frmMain`: its Load handler, start-up step, Unload handler, exit
/// commands, and its reactions to the tray. User-interface thread.
class MainWindow : public MainWindowStart {
 public:
  /// `end_process` ends the program; it is called once, after everything has been closed.
  MainWindow(EnginePorts ports, MainWindowViews views, const ApplicationFolder& home,
             const OperatingSystem& system, DialogFactory& dialogs, std::function<void()> end_process);

  void LoadHidden() override;
  void Show() override;

  /// The window is asked to close. True when it may; false when it was only hidden, because the
  /// program goes on in the tray.
  bool Unload();

  /// The exit commands `mnuExit` and `mnuExitSys`.
  void Exit();

  /// The commands `mnuOn` and `mnuOff`.
  void TurnOn();
  void TurnOff();

  /// `mnuHide`: minimises the window and hides it.
  void Hide();

  /// `mnuOpen`: shows the window again. A blinking icon goes on blinking.
  void Open();

  /// Shows the window in front of the others, as a click on the tray's icon does.
  void BringToFront();

  /// A mouse event over the tray icon: its message number (514 left button up, 517 right button up) arrives
  /// as the X coordinate of a mouse move, in twips.
  void TrayMouseMove(double x, double twips_per_pixel);

  /// The user has restored the window without the tray, because it was only minimised.
  void CameBack();

  /// The window came into sight, or went out of it (hidden, minimised): its clock stands while nobody sees
  /// it.
  void SightChanged(bool seen);

  /// The window became active or inactive. An empty list is read again, because another program may have
  /// added calls, and offers what is still to be set up; other lists stay as they are, so that no row moves
  /// under the mouse.
  void ActivationChanged();

  /// Runs as a posted task: shows the remaining records, and a message box about what happened to records or
  /// settings.
  void TellOfLoss(const Words& text);

  /// `Check1` was clicked.
  void ChangeGridLines();

  /// The exit is complete.
  bool Ended() const { return ended_; }

  AnsweringMachine& Machine() { return machine_; }
  const AnsweringMachine& Machine() const { return machine_; }
  MainCommands& Commands() { return commands_; }

 private:
  void Load();
  void StartUp();
  void OpenRecords();
  void ReadSettings();
  void ShowListStyle();
  void ShowClock();
  void SetToolbarStyles();
  void CloseOtherWindows();
  void StopSounds();
  void PutAway();
  void TellThatItGoesOn();
  void WatchTray();

  EnginePorts ports_;
  MainWindowViews views_;
  const OperatingSystem& system_;
  std::function<void()> end_process_;
  AnsweringMachine machine_;
  MainCommands commands_;
  std::unique_ptr<Timer> TimerPannel;
  std::unique_ptr<Timer> TrayWatch_;  ///< runs while the window is hidden
  Lifeline lifeline_;
  bool tray_missed_ = false;  ///< the last check found no notification area
  bool loaded_ = false;
  bool exiting_ = false;
  bool ended_ = false;
};

}  // namespace orven
