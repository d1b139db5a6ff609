// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>

#include "core/settings_store.h"

namespace orven {

/// What a person's choice on the quick-option toolbar changes: the setting, and what the next step of
/// a call does. User-interface thread.
class QuickOptions {
 public:
  QuickOptions(SettingsStore& store, SystemLog& log, Settings& settings, SharedOptions& shared)
      : store_(store), log_(log), settings_(settings), shared_(shared) {}

  /// `chkRecMessage` was clicked.
  void SetRecordMessage(bool on);

  /// A ring count was chosen in `cmbRings`; a text that is no number is logged and changes nothing.
  void SetRings(const std::string& text);

  /// A greeting was chosen in `cmbDefGreet`.
  void SetGreeting(const std::string& name);

 private:
  SettingsStore& store_;
  SystemLog& log_;
  Settings& settings_;
  SharedOptions& shared_;
};

}  // namespace orven
