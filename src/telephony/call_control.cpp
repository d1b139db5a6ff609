// SPDX-License-Identifier: GPL-3.0-or-later
#include "telephony/call_control.h"

#include <utility>

#include "base/runtime_error.h"
#include "core/error_trap.h"

namespace orven {

void CallControl::Enter(CallState next, const char* label) {
  const auto from = std::exchange(call.state, next);
  if (IsLegal(from, next)) return;
  const ErrorTrap trap(log, label);
  trap([&] {
    throw RuntimeError(ErrorNumber::InvalidProcedureCall,
                       std::string("a call went from ") + NameOf(from) + " to " + NameOf(next));
  });
}

void CallControl::AnswerToCall(std::int32_t index, std::int32_t ring_count, bool force) {
  const ErrorTrap trap(log, "ErrAnswerToCall ");
  trap([&] {
    if (Tapi1.IsCallConnected(index)) return;
    const bool due = ring_count >= settings.NumOfRing && !call.Answering();
    if (!force && !due) return;
    const auto request = RequestAnswer();
    if (request > 0) call.ring_count_text = std::to_string(ring_count);
    log.WriteSystem("LineAnswer" + LineTag(Line()) + "->Proc Num: " + std::to_string(request));
  });
}

std::int32_t CallControl::RequestAnswer() {
  const auto request = Tapi1.LineAnswer(Line());
  if (request > 0) {
    answer_request_ = request;
    if (call.state == CallState::Offered) Enter(CallState::Answering, "ErrAnswerToCall ");
  }
  return request;
}

void CallControl::RequestFailed(std::int32_t request) {
  if (request == answer_request_ && call.state == CallState::Answering)
    Enter(CallState::Offered, "ErrTapiProc ");
}

void CallControl::HangUp() const {
  Wave1.StopPlay();
  const auto index = Line();
  const auto result = Tapi1.LineDrop(index);
  log.WriteSystem("LineDrop" + LineTag(index) + "->Proc Num: " + Tapi1.ErrorText(result));
}

void CallControl::DropCall() {
  HangUp();
  line.ShowMonitoring();
}

void CallControl::DropInComeCall() {
  const auto index = Line();
  log.WriteSystem("DropChice" + LineTag(index));
  const ErrorTrap trap(log, "ErrDropInComeCall ");
  trap([&] {
    if (Tapi1.IsCallConnected(index)) return;
    const auto result = RequestAnswer();
    log.WriteSystem("LineAnswer" + LineTag(index) + "->" + Tapi1.ErrorText(result));
  });
  call.dropped = true;
  trap([&] { HangUp(); });
}

}  // namespace orven
