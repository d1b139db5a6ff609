// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>

namespace orven {

/// Where the line's one call stands.
enum class CallState {
  Idle,       ///< monitoring, no call
  Offered,    ///< ringing
  Answering,  ///< a request to answer was accepted
  Greeting,
  Beep,
  Recording,
  Recorded,       ///< the longest message was taken, the caller is still there
  Administrator,  ///< the caller keyed the password
  Disconnected,   ///< the caller hung up
};

const char* NameOf(CallState state);

/// The way of a call through its states. It shows where a call stands and finds a sequence that goes
/// astray; what a handler may do is decided by the call's flags.
class CallProgress {
 public:
  CallState State() const { return state_; }

  /// Goes to `next`. A way that no call can take is taken all the same, and reported by throwing
  /// RuntimeError 5 with both states.
  void Enter(CallState next);

 private:
  CallState state_ = CallState::Idle;
};

/// Whether a call can go from one state to the other.
bool IsLegal(CallState from, CallState to);

}  // namespace orven
