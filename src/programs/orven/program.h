// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "adapters/audio/file_wave_control.h"
#include "adapters/database/sqlite_database.h"
#include "adapters/desktop/desktop_system.h"
#include "adapters/desktop/qt_clock.h"
#include "adapters/desktop/qt_dialogs.h"
#include "adapters/desktop/qt_event_loop.h"
#include "adapters/files/disk_files.h"
#include "adapters/line/service/line_service.h"
#include "adapters/registry/registry_file.h"
#include "core/entry_routine.h"
#include "programs/orven/windowless_view.h"
#include "shell/main_window.h"

namespace orven {

/// The composition root: every concrete class of the running program, in the order in which they need
/// each other. Needs a QApplication; user-interface thread.
class Program {
 public:
  /// `folder` is the application folder, made already; `assets` the installed assets, empty if none.
  Program(const std::string& folder, std::string assets);
  ~Program();

  /// Starts the answering machine. False when another instance runs in this folder.
  bool Start(const std::string& command_line);

  /// Ends it as the exit commands do; the event loop then ends.
  void Exit() { window_.Exit(); }

  /// Whether it has ended already, perhaps while it was still starting.
  bool Ended() const { return window_.Ended(); }

 private:
  void PrepareFolder(bool first_start);
  FirstStart::Sources FirstStartSources();
  void Report(const std::string& problem);
  std::vector<std::unique_ptr<LineDriver>> MakeLines();

  SharedOptions shared_;
  std::string assets_;
  std::vector<std::string> early_problems_;  ///< found before this process knew that it is the one
  bool prepared_ = false;
  Lifeline lifeline_;

  DesktopSystem system_;
  QtEventLoop loop_;
  QtClock clock_;
  QtDialogs dialogs_;
  DiskFiles files_;
  RegistryFile registry_;
  SqliteDatabase database_;
  LineService lines_;
  FileWaveControl line_wave_;
  FileWaveControl desk_wave_;
  WindowlessView view_;
  MainWindow window_;
};

}  // namespace orven
