// SPDX-License-Identifier: GPL-3.0-or-later
#include "log/log_properties.h"

#include <algorithm>

#include "core/error_trap.h"

namespace orven {

LogChoices LogProperties::Load() {
  store_.GetLogProperties();
  const bool known = std::ranges::find(kLogForChoices, settings_.LogFor) != std::end(kLogForChoices);
  return {settings_.cLogCalls != 0, settings_.cLogSys != 0,
          known ? settings_.LogFor : std::string(*std::rbegin(kLogForChoices)),
          settings_.cWornBeforeDelete != 0};
}

void LogProperties::Ok(const LogChoices& choices) {
  Put("cLogCalls", &Settings::cLogCalls, choices.chkLogCalls);
  Put("cLogSys", &Settings::cLogSys, choices.chkLogSys);
  Put("cWornBeforeDelete", &Settings::cWornBeforeDelete, choices.chkWornBeforeDelete);
  settings_.LogFor = choices.cmbLogFor;
  ErrorTrap::Silent()([&] { store_.Set("LogFor", choices.cmbLogFor); });
  log_.PurgeOldLogs(purged_);
}

void LogProperties::Put(const char* name, std::int16_t Settings::*field, bool on) {
  settings_.*field = on ? 1 : 0;
  ErrorTrap::Silent()([&] { store_.Set(name, on ? "1" : "0"); });
}

}  // namespace orven
