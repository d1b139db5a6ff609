// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <functional>

#include "core/entry_routine.h"
#include "platform/operating_system.h"
#include "shell/answering_machine.h"

namespace orven {

/// The engine half of the main window `frmMain`: its Load handler, start-up step, Unload handler and
/// exit commands. User-interface thread.
class MainWindow : public MainWindowStart {
 public:
  /// `end_process` ends the program; it is called once, after everything has been closed.
  MainWindow(EnginePorts ports, MainWindowViews views, SharedOptions& shared, const OperatingSystem& system,
             std::function<void()> end_process);

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

  /// An exit command has been carried out; nothing is left to wait for.
  bool Ended() const { return ended_; }

  AnsweringMachine& Machine() { return machine_; }

 private:
  void Load();
  void StartUp();
  void ReadSettings();
  void FillGreetings();
  void SetToolbarStyles();
  void StopSounds();

  EnginePorts ports_;
  MainWindowViews views_;
  const OperatingSystem& system_;
  std::function<void()> end_process_;
  AnsweringMachine machine_;
  bool exiting_ = false;
  bool ended_ = false;
};

}  // namespace orven
