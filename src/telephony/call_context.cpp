// SPDX-License-Identifier: GPL-3.0-or-later
#include "telephony/call_context.h"

#include "base/runtime_error.h"
#include "core/error_trap.h"

namespace orven {

const char* NameOf(CallState state) {
  switch (state) {
    case CallState::Idle: return "idle";
    case CallState::Offered: return "offered";
    case CallState::Answering: return "answering";
    case CallState::Greeting: return "greeting";
    case CallState::Beep: return "beep";
    case CallState::Recording: return "recording";
    case CallState::Recorded: return "recorded";
    case CallState::Administrator: return "administrator";
    case CallState::Disconnected: return "disconnected";
  }
  return "?";
}

bool IsLegal(CallState from, CallState to) {
  if (to == CallState::Idle) return true;
  switch (from) {
    case CallState::Idle: return to == CallState::Offered;
    // The user may drop an offered call; a line may connect a call that the program did not answer.
    case CallState::Offered: return to == CallState::Answering || to == CallState::Greeting;
    // A request that failed leaves the call ringing.
    case CallState::Answering:
      // The caller may hang up before the connection is established.
      return to == CallState::Offered || to == CallState::Greeting || to == CallState::Disconnected;
    case CallState::Greeting:
      return to == CallState::Beep || to == CallState::Administrator || to == CallState::Disconnected;
    case CallState::Beep:
      return to == CallState::Recording || to == CallState::Administrator || to == CallState::Disconnected;
    case CallState::Recording:
      return to == CallState::Recorded || to == CallState::Disconnected || to == CallState::Administrator;
    case CallState::Recorded:
    // A password keyed again starts the messages again.
    case CallState::Administrator: return to == CallState::Administrator || to == CallState::Disconnected;
    case CallState::Disconnected: return false;
  }
  return false;
}

void CallProgress::Enter(CallState next) {
  const auto from = state_;
  state_ = next;
  if (!IsLegal(from, next)) {
    throw RuntimeError(ErrorNumber::InvalidProcedureCall,
                       std::string("a call went from ") + NameOf(from) + " to " + NameOf(next));
  }
}

void CallContext::Enter(CallState next, const char* label) const {
  const ErrorTrap trap(log, label);
  trap([&] { progress.Enter(next); });
}

}  // namespace orven
