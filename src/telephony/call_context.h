// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>

#include "core/activity_log.h"
#include "core/settings.h"
#include "platform/wave.h"
#include "records/call.h"
#include "records/open_calls.h"
#include "telephony/line_manager.h"
#include "telephony/telephony_control.h"

namespace orven {

/// Shared by the classes that handle the call: the call, the settings, the line and its two
/// controls, the open calls. Owned by the main window; none of them outlives it.
struct CallContext {
  TelephonyControl& Tapi1;
  WaveControl& Wave1;
  SystemLog& log;
  const Settings& settings;
  const SharedOptions& shared;
  Call& call;
  LineManager& line;
  OpenCalls& open_calls;

  /// Index of the line that carries calls.
  std::int32_t Line() const { return line.CurrentIndex(); }

  /// The call is answered and our side has not hung up yet.
  bool Connected() const { return Tapi1.IsCallConnected(Line()); }

  /// Moves the call to `next`; an impossible transition is made all the same, and logged under `label`.
  void Enter(CallState next, const char* label) const;
};

/// "[LineIndex:" + line + "]", as in the lines of the log.
inline std::string LineTag(std::int32_t line) {
  return "[LineIndex:" + std::to_string(line) + "]";
}

}  // namespace orven
