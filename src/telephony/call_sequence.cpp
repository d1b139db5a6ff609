// SPDX-License-Identifier: GPL-3.0-or-later
#include "telephony/call_sequence.h"

#include "core/error_trap.h"
#include "greetings/greeting_library.h"

namespace orven {

void CallSequence::Handle(const LineEvent& event) {
  using Kind = LineEvent::Kind;
  const auto line = event.line;
  switch (event.kind) {
    case Kind::InCommingCall: return InCommingCall(line);
    case Kind::Ring: return Ring(line, event.number);
    case Kind::CallerID: return CallerID(line, event.name, event.text);
    case Kind::Diverted: return Diverted(line, event.name, event.text);
    case Kind::Proc: return Proc(line, event.number, event.result);
    case Kind::Connected:
      if (control_.call.InProgress()) Connected(line);
      return;
    case Kind::MonitorDigit: return parts_.remote.MonitorDigit(line, event.digit);
    case Kind::Disconnected:
      if (control_.call.InProgress()) Disconnected(line);
      return;
    case Kind::Idle:
      if (control_.call.InProgress()) Idle(line);
      return;
    case Kind::Trouble: return control_.line.Trouble(line, event.trouble);
  }
}

void CallSequence::InCommingCall(std::int32_t line) {
  control_.log.WriteSystem("InCommingCall" + LineTag(line));
  parts_.view.ShowStatus(Words("InComing Call"));
  const ErrorTrap trap(control_.log, "ErrTapiInComeCall ");
  trap([&] {
    const auto now = parts_.clock.Now();
    const auto date = parts_.clock.DateText(now);
    const auto time = parts_.clock.TimeText(now);
    const auto before = control_.call.state;
    control_.call = Call::Offered(++calls_, date, time, MessageFileName(date, time));
    control_.call.state = before;  // so that Enter sees an impossible step
  });
  control_.open_calls.Begin(control_.call);
  control_.Enter(CallState::Offered, "ErrTapiInComeCall ");
  parts_.after_call.Announce(control_.call);
}

void CallSequence::Ring(std::int32_t line, std::int32_t count) {
  control_.log.WriteSystem("Ring" + LineTag(line) + "->" + std::to_string(count));
  parts_.view.ShowStatus(Words("Ring :%1").Arg(count));
  control_.AnswerToCall(line, count, false);
  const ErrorTrap trap(control_.log, "ErrTapiRing ");
  trap([&] {
    if (parts_.caller_view.IsOpen()) parts_.caller_view.ShowRing(Words("Ring : %1").Arg(count));
  });
}

void CallSequence::CallerID(std::int32_t line, const std::string& name, const std::string& number) {
  control_.log.WriteSystem("CallerID" + LineTag(line) + "->" + name + "-" + number);
  parts_.view.ShowStatus(Words("Caller ID Information"));
  control_.call.caller_name = name;
  control_.call.caller_number = number;
  control_.open_calls.Note(control_.call);
  if (parts_.caller_view.IsOpen()) parts_.caller_view.ShowCall(control_.call);
}

void CallSequence::Diverted(std::int32_t line, const std::string& from, const std::string& reason) {
  control_.log.WriteSystem("Diverted" + LineTag(line) + "->" + from + (reason.empty() ? "" : " " + reason));
}

/// An answer or a hang-up completed; `result` equals `request` on success.
void CallSequence::Proc(std::int32_t line, std::int32_t request, std::int32_t result) {
  const auto step = "Proc" + LineTag(line) + "->" + std::to_string(request) + " ";
  control_.log.WriteSystem(step + std::to_string(result));
  control_.log.WriteSystem(step + (request == result ? "Success." : control_.Tapi1.ErrorText(result)));
  if (request != result) control_.RequestFailed(request);
}

void CallSequence::Connected(std::int32_t line) {
  const ErrorTrap trap(control_.log, "ErrTapiConnected ");
  parts_.view.ShowStatus(Words("Line Connected"));
  trap([&] {
    if (!control_.Tapi1.IsCallConnected(line)) return;
    control_.Tapi1.MonitorDigits(line, true);
    control_.log.WriteSystem("Connected" + LineTag(line));
    parts_.recorder.MakeReady();
    PlayGreeting();
  });
  control_.open_calls.Note(control_.call);  // it now has the ring at which the call was answered
  UpdateCallerView(Words("Line Connected"));
  if (parts_.caller_view.IsOpen()) parts_.caller_view.HideAnswer();
}

void CallSequence::Disconnected(std::int32_t line) {
  parts_.view.ShowStatus(Words("Line Disconnected"));
  control_.log.WriteSystem("Disconnected" + LineTag(line));
  control_.Enter(CallState::Disconnected, "ErrTapiDisConnected ");
  const ErrorTrap trap(control_.log, "ErrTapiDisConnected ");
  trap([&] {
    if (parts_.recorder.Recording()) parts_.recorder.StopRecMessage();
  });
  trap([&] {
    if (control_.Tapi1.IsCallConnected(line)) control_.DropCall();
  });
  UpdateCallerView(Words("Line Disconnected"));
}

void CallSequence::Idle(std::int32_t line) {
  auto& call = control_.call;
  control_.Enter(CallState::Idle, "ErrTapiIdle ");
  control_.log.WriteSystem("Idle" + LineTag(line));
  const ErrorTrap trap(control_.log, "ErrTapiIdle ");
  trap([&] { control_.Wave1.StopPlay(); });
  trap([&] { parts_.recorder.EndOfCall(); });
  if (!call.admin_mode) {
    parts_.after_call.Finish(call);
  } else if (parts_.caller_view.IsOpen()) {
    parts_.caller_view.HideControl();
  }
  control_.line.ShowMonitoring();
}

void CallSequence::UpdateCallerView(const Words& status) {
  if (parts_.caller_view.IsOpen()) parts_.caller_view.ShowMessage(status);
}

std::int32_t CallSequence::PlayOnLine(const std::string& path) {
  return control_.Wave1.PlayFile(path, control_.Tapi1.GetWaveDeviceId(control_.Line()));
}

void CallSequence::PlayGreeting() {
  control_.Enter(CallState::Greeting, "ErrTapiConnected ");
  const auto result = PlayOnLine(GreetingPath(control_.home, control_.settings.Greeting));
  if (result == kWaveOk) return;
  control_.log.WriteSystem("Play Greeting " + control_.Wave1.PlayErrorText(result));
  PlayFinished();
}

void CallSequence::PlayFinished() {
  const ErrorTrap trap(control_.log, "ErrLineWaveDonePlay ");
  trap([&] {
    if (!control_.Connected()) return control_.DropCall();
    switch (control_.call.state) {
      case CallState::Greeting: return PlayBeep();
      case CallState::Beep: return parts_.recorder.RecMessage();
      case CallState::Administrator: return parts_.remote.PlayForAdmin();
      default: return;
    }
  });
}

void CallSequence::PlayBeep() {
  control_.Enter(CallState::Beep, "ErrLineWaveDonePlay ");
  const auto result = PlayOnLine(control_.home.Path("\\beep.wav"));
  control_.log.WriteSystem("Play Beep " + control_.Wave1.PlayErrorText(result));
  if (result != kWaveOk) PlayFinished();
}

}  // namespace orven
