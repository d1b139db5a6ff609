// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <string>

#include "core/activity_log.h"
#include "telephony/call_effects.h"

namespace orven {

/// In place of the caller view and the actions, which this version does not have: writes to the system
/// log what they would show and do.
class LoggedEffects : public CallerView, public CallActions {
 public:
  /// Where to write; nothing is written before. The log outlives this object's use.
  void SetLog(SystemLog* log) { log_ = log; }

  bool IsOpen() const override { return open_; }
  void ViewCallViewer(bool animate, std::int16_t speed, bool auto_close, std::int16_t seconds) override;
  void HideControl() override {}
  void ShowMessage(const std::string& text) override;
  void ShowCall(const Call& /*call*/) override {}

  void DoActions(const std::string& kind, Call& call) override;

 private:
  void Write(const std::string& text);

  SystemLog* log_ = nullptr;
  bool open_ = false;
};

}  // namespace orven
