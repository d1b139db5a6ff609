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

/// The state of the line's one call.
enum class CallState {
  Idle,       ///< monitoring, no call
  Offered,    ///< ringing
  Answering,  ///< a request to answer was accepted
  Greeting,
  Beep,
  Recording,
  Recorded,       ///< the message has reached its longest length, the caller is still there
  Administrator,  ///< the caller keyed the password
  Disconnected,   ///< the caller hung up
};

const char* NameOf(CallState state);

/// The state of the current call. It detects impossible transitions; what a handler may do is decided by the
/// call's flags.
class CallProgress {
 public:
  CallState State() const { return state_; }

  /// Goes to `next`, even by an impossible transition; then throws RuntimeError 5 with both states.
  void Enter(CallState next);

 private:
  CallState state_ = CallState::Idle;
};

/// Whether a call can go from one state to the other.
bool IsLegal(CallState from, CallState to);

/// Shared by the classes that handle the call: the call, its state, the settings, the line and its two
/// controls, the open calls. Owned by the main window; none of them outlives it.
struct CallContext {
  TelephonyControl& Tapi1;
  WaveControl& Wave1;
  SystemLog& log;
  const Settings& settings;
  const SharedOptions& shared;
  Call& call;
  CallProgress& progress;
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
