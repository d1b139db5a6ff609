// SPDX-License-Identifier: GPL-3.0-or-later
#include "telephony/call_control.h"

#include "core/error_trap.h"

namespace orven {

void CallControl::AnswerToCall(std::int32_t line, std::int32_t ring_count, bool force) {
  const ErrorTrap trap(context_.log, "ErrAnswerToCall ");
  trap([&] {
    if (context_.Tapi1.IsCallConnected(line)) return;
    const bool due = ring_count >= context_.settings.NumOfRing && !context_.call.Answering();
    if (!force && !due) return;
    const auto request = RequestAnswer();
    if (request > 0) context_.call.ring_count_text = std::to_string(ring_count);
    context_.log.WriteSystem("LineAnswer" + LineTag(context_.Line()) +
                             "->Proc Num: " + std::to_string(request));
  });
}

std::int32_t CallControl::RequestAnswer() {
  const auto request = context_.Tapi1.LineAnswer(context_.Line());
  if (request > 0) {
    answer_request_ = request;
    if (context_.call.state == CallState::Offered) context_.Enter(CallState::Answering, "ErrAnswerToCall ");
  }
  return request;
}

void CallControl::Proc(std::int32_t line, std::int32_t request, std::int32_t result) {
  const auto step = "Proc" + LineTag(line) + "->" + std::to_string(request) + " ";
  context_.log.WriteSystem(step + std::to_string(result));
  if (request == result) {
    context_.log.WriteSystem(step + "Success.");
    return;
  }
  context_.log.WriteSystem(step + context_.Tapi1.ErrorText(result));
  // Only a failure of the current answer allows another try; a late one belongs to an earlier call.
  if (request == answer_request_ && context_.call.state == CallState::Answering)
    context_.Enter(CallState::Offered, "ErrTapiProc ");
}

void CallControl::HangUp() const {
  context_.Wave1.StopPlay();
  const auto line = context_.Line();
  const auto result = context_.Tapi1.LineDrop(line);
  context_.log.WriteSystem("LineDrop" + LineTag(line) + "->Proc Num: " + context_.Tapi1.ErrorText(result));
}

void CallControl::DropCall() {
  HangUp();
  context_.line.ShowMonitoring();
}

void CallControl::DropInComeCall() {
  const auto line = context_.Line();
  context_.log.WriteSystem("DropChice" + LineTag(line));
  const ErrorTrap trap(context_.log, "ErrDropInComeCall ");
  trap([&] {
    if (context_.Tapi1.IsCallConnected(line)) return;
    const auto result = RequestAnswer();
    context_.log.WriteSystem("LineAnswer" + LineTag(line) + "->" + context_.Tapi1.ErrorText(result));
  });
  trap([&] { HangUp(); });
}

}  // namespace orven
