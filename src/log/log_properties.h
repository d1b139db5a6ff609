// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <functional>
#include <string>

#include "core/settings_store.h"
#include "log/mdlLog.h"

namespace orven {

/// The entries of `cmbLogFor`. The last, and any other text, means that no log is purged.
inline constexpr const char* kLogForChoices[] = {"1 Last Month", "2 Last Month", "3 Last Month", "For Ever"};

/// The state of every control of the log properties, under the controls' names.
struct LogChoices {
  bool chkLogCalls = false;
  bool chkLogSys = false;
  std::string cmbLogFor;  ///< one of kLogForChoices
  bool chkWornBeforeDelete = false;
};

/// What the log properties do: which logs are written, for how long they are kept, and whether the viewer
/// asks before it deletes one. A statement that fails leaves no trace. User-interface thread.
class LogProperties {
 public:
  LogProperties(Settings& settings, SettingsStore& store, LogFiles& log, std::function<void()> purged)
      : settings_(settings), store_(store), log_(log), purged_(std::move(purged)) {}

  LogChoices Load();

  /// `cmdOK`: stores everything, uses it at once and purges; `purged` runs after that, when other events
  /// have run in between.
  void Ok(const LogChoices& choices);

 private:
  void Put(const char* name, std::int16_t Settings::*field, bool on);

  Settings& settings_;
  SettingsStore& store_;
  LogFiles& log_;
  std::function<void()> purged_;
};

}  // namespace orven
