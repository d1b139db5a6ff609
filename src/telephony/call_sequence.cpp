// SPDX-License-Identifier: GPL-3.0-or-later
#include "telephony/call_sequence.h"

#include "core/error_trap.h"

namespace orven {

void CallSequence::Handle(const LineEvent& event) {
  using Kind = LineEvent::Kind;
  const auto line = event.line;
  switch (event.kind) {
    case Kind::InCommingCall: return InCommingCall(line);
    case Kind::Ring: return Ring(line, event.number);
    case Kind::CallerID: return CallerID(line, event.name, event.text);
    case Kind::Proc: return parts_.control.Proc(line, event.number, event.result);
    case Kind::Connected:
      if (context_.call.InProgress()) Connected(line);
      return;
    case Kind::MonitorDigit: return parts_.remote.MonitorDigit(line, event.digit);
    case Kind::Disconnected:
      if (context_.call.InProgress()) Disconnected(line);
      return;
    case Kind::Idle:
      if (context_.call.InProgress()) Idle(line);
      return;
    case Kind::Trouble: return context_.line.Trouble(line, event.text);
  }
}

void CallSequence::InCommingCall(std::int32_t line) {
  context_.log.WriteSystem("InCommingCall" + LineTag(line));
  parts_.view.ShowStatus("InComing Call");
  const ErrorTrap trap(context_.log, "ErrTapiInComeCall ");
  trap([&] {
    const auto now = parts_.clock.Now();
    const auto date = parts_.clock.DateText(now);
    const auto time = parts_.clock.TimeText(now);
    const auto before = context_.call.state;
    context_.call = Call::Offered(++calls_, date, time, MessageFileName(date, time));
    context_.call.state = before;  // so that Enter sees an impossible step
  });
  context_.open_calls.Begin(context_.call);
  context_.Enter(CallState::Offered, "ErrTapiInComeCall ");
  parts_.after_call.Announce(context_.call);
}

void CallSequence::Ring(std::int32_t line, std::int32_t count) {
  context_.log.WriteSystem("Ring" + LineTag(line) + "->" + std::to_string(count));
  parts_.view.ShowStatus("Ring :" + std::to_string(count));
  parts_.control.AnswerToCall(line, count, false);
  const ErrorTrap trap(context_.log, "ErrTapiRing ");
  trap([&] {
    if (parts_.caller_view.IsOpen()) parts_.caller_view.ShowRing("Ring : " + std::to_string(count));
  });
}

void CallSequence::CallerID(std::int32_t line, const std::string& name, const std::string& number) {
  context_.log.WriteSystem("CallerID" + LineTag(line) + "->" + name + "-" + number);
  parts_.view.ShowStatus("Caller ID Information");
  context_.call.caller_name = name;
  context_.call.caller_number = number;
  context_.open_calls.Note(context_.call);
  if (parts_.caller_view.IsOpen()) parts_.caller_view.ShowCall(context_.call);
}

void CallSequence::Connected(std::int32_t line) {
  const ErrorTrap trap(context_.log, "ErrTapiConnected ");
  parts_.view.ShowStatus("Line Connected");
  trap([&] {
    if (!context_.Tapi1.IsCallConnected(line)) return;
    context_.Tapi1.MonitorDigits(line, true);
    context_.log.WriteSystem("Connected" + LineTag(line));
    parts_.recorder.MakeReady();
    PlayGreeting();
  });
  context_.open_calls.Note(context_.call);  // it now has the ring at which the call was answered
  UpdateCallerView("Line Connected");
  if (parts_.caller_view.IsOpen()) parts_.caller_view.HideAnswer();
}

void CallSequence::Disconnected(std::int32_t line) {
  parts_.view.ShowStatus("Line Disconnected");
  context_.log.WriteSystem("Disconnected" + LineTag(line));
  context_.Enter(CallState::Disconnected, "ErrTapiDisConnected ");
  const ErrorTrap trap(context_.log, "ErrTapiDisConnected ");
  trap([&] {
    if (parts_.recorder.Recording()) parts_.recorder.StopRecMessage();
  });
  trap([&] {
    if (context_.Tapi1.IsCallConnected(line)) parts_.control.DropCall();
  });
  UpdateCallerView("Line Disconnected");
}

void CallSequence::Idle(std::int32_t line) {
  auto& call = context_.call;
  context_.Enter(CallState::Idle, "ErrTapiIdle ");
  context_.log.WriteSystem("Idle" + LineTag(line));
  const ErrorTrap trap(context_.log, "ErrTapiIdle ");
  trap([&] { context_.Wave1.StopPlay(); });
  trap([&] { parts_.recorder.EndOfCall(); });
  if (!call.admin_mode) {
    parts_.after_call.Finish(call);
  } else if (parts_.caller_view.IsOpen()) {
    parts_.caller_view.HideControl();
  }
  context_.line.ShowMonitoring();
}

void CallSequence::UpdateCallerView(const std::string& status) {
  if (parts_.caller_view.IsOpen()) parts_.caller_view.ShowMessage(status);
}

std::int32_t CallSequence::PlayOnLine(const std::string& path) {
  return context_.Wave1.PlayFile(path, context_.Tapi1.GetWaveDeviceId(context_.Line()));
}

void CallSequence::PlayGreeting() {
  context_.Enter(CallState::Greeting, "ErrTapiConnected ");
  const auto result =
      PlayOnLine(context_.shared.InApplicationFolder("\\Greets\\") + context_.settings.Greeting + ".wav");
  if (result == kWaveOk) return;
  context_.log.WriteSystem("Play Greeting " + context_.Wave1.PlayErrorText(result));
  PlayFinished();
}

void CallSequence::PlayFinished() {
  const ErrorTrap trap(context_.log, "ErrLineWaveDonePlay ");
  trap([&] {
    if (!context_.Connected()) return parts_.control.DropCall();
    switch (context_.call.state) {
      case CallState::Greeting: return PlayBeep();
      case CallState::Beep: return parts_.recorder.RecMessage();
      case CallState::Administrator: return parts_.remote.PlayForAdmin();
      default: return;
    }
  });
}

void CallSequence::PlayBeep() {
  context_.Enter(CallState::Beep, "ErrLineWaveDonePlay ");
  const auto result = PlayOnLine(context_.shared.InApplicationFolder("\\beep.wav"));
  context_.log.WriteSystem("Play Beep " + context_.Wave1.PlayErrorText(result));
  if (result != kWaveOk) PlayFinished();
}

}  // namespace orven
