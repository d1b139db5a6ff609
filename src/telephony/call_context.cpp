// SPDX-License-Identifier: GPL-3.0-or-later
#include "telephony/call_context.h"

#include <utility>

#include "base/runtime_error.h"
#include "core/error_trap.h"

namespace orven {

void CallContext::Enter(CallState next, const char* label) const {
  const auto from = std::exchange(call.state, next);
  if (IsLegal(from, next)) return;
  const ErrorTrap trap(log, label);
  trap([&] {
    throw RuntimeError(ErrorNumber::InvalidProcedureCall,
                       std::string("a call went from ") + NameOf(from) + " to " + NameOf(next));
  });
}

}  // namespace orven
