// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <functional>
#include <string>

#include "core/first_start.h"
#include "core/settings.h"
#include "platform/dialogs.h"
#include "platform/operating_system.h"

namespace orven {

/// The main window as the entry routine knows it.
class MainWindowStart {
 public:
  virtual ~MainWindowStart() = default;
  /// Runs the Load handler and the start-up step without showing a window.
  virtual void LoadHidden() = 0;
  /// The same, and shows the window.
  virtual void Show() = 0;
};

/// The process entry: one instance, first start, main window.
class EntryRoutine {
 public:
  /// `prepare` brings the application folder's own files into place. It runs only when this process
  /// is the one instance, before any setting is read; its argument tells a first start.
  EntryRoutine(OperatingSystem& system, Dialogs& dialogs, FirstStart& first_start, SharedOptions& shared,
               std::function<void(bool first_start)> prepare)
      : system_(system),
        dialogs_(dialogs),
        first_start_(first_start),
        shared_(shared),
        prepare_(std::move(prepare)) {}

  /// `command_line` is everything after the program's name, as one text. True when the program runs
  /// now; false when another instance runs and this process has to end.
  bool Run(const std::string& command_line, MainWindowStart& window);

 private:
  OperatingSystem& system_;
  Dialogs& dialogs_;
  FirstStart& first_start_;
  SharedOptions& shared_;
  std::function<void(bool)> prepare_;
};

}  // namespace orven
