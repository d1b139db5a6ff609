// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <functional>
#include <string>

#include "base/paths.h"
#include "platform/dialogs.h"
#include "platform/operating_system.h"
#include "platform/registry.h"

namespace orven {

inline constexpr const char* kApplicationVersion = "1.0.0.22";

/// Turns an application folder without settings into a working answering machine: the first values of all
/// settings, the three that depend on the machine, and a random password.
class FirstStart {
 public:
  struct Sources {
    /// A uniformly random number from 0 to one less than its argument, from a cryptographic source.
    std::function<std::uint32_t(std::uint32_t)> random;
    /// Shows the new password to the person who installs; it is stored in the settings only.
    std::function<void(const std::string& password)> announce_password;
  };

  FirstStart(Registry& registry, const OperatingSystem& system, const ApplicationFolder& home,
             Sources sources)
      : registry_(registry), system_(system), home_(home), sources_(std::move(sources)) {}

  /// A first start is one that finds no settings key.
  bool IsDue() const;

  /// Writes everything. The settings key comes last, in one write, so that the next start after a crash is a
  /// first start again.
  void Run();

 private:
  Registry& registry_;
  const OperatingSystem& system_;
  const ApplicationFolder& home_;
  Sources sources_;
};

/// The main window as the entry routine sees it.
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
  /// `prepare` brings the application folder's own files into place. It runs only when this process is the
  /// only instance, before any setting is read; its argument is true on a first start.
  EntryRoutine(OperatingSystem& system, Dialogs& dialogs, FirstStart& first_start,
               std::function<void(bool first_start)> prepare)
      : system_(system), dialogs_(dialogs), first_start_(first_start), prepare_(std::move(prepare)) {}

  /// `command_line` is everything after the program's name, as one text. True when the program runs
  /// now; false when another instance runs and this process has to end.
  bool Run(const std::string& command_line, MainWindowStart& window);

 private:
  OperatingSystem& system_;
  Dialogs& dialogs_;
  FirstStart& first_start_;
  std::function<void(bool)> prepare_;
};

}  // namespace orven
