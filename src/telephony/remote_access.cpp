// SPDX-License-Identifier: GPL-3.0-or-later
#include "telephony/remote_access.h"

#include "core/error_trap.h"

namespace orven {

void RemoteAccess::MonitorDigit(std::int32_t line, char digit) {
  const ErrorTrap trap(context_.log, "ErrTapiMonitorDigit ");
  auto& call = context_.call;
  context_.log.WriteSystem("MonitorDigit" + LineTag(line) + "->" + digit);
  bool recording = false;
  trap([&] { recording = recorder_.Recording(); });
  if (recording) return;
  if (digit == '*') {
    if (call.digit_buffer == context_.settings.Pass) {
      trap([&] { EnterAdministratorMode(line); });
      return;
    }
    call.digit_buffer.clear();
  } else {
    call.digit_buffer += digit;
  }
  trap([&] { context_.Tapi1.MonitorDigits(line, true); });
  trap([&] { view_.ShowStatus("Monitoring Digits: " + call.digit_buffer); });
}

void RemoteAccess::EnterAdministratorMode(std::int32_t line) {
  const ErrorTrap trap(context_.log, "ErrTapiMonitorDigit ");
  auto& call = context_.call;
  trap([&] { context_.Tapi1.SetGreetingPhase(line, false); });
  call.beep_playing = false;
  call.greeting_playing = false;
  call.admin_mode = true;
  context_.journal.Done(call);
  // A recording that failed to start has left its timers; the owner must not be timed by them.
  recorder_.StopTimers();
  context_.log.WriteSystem("Remote Control " + LineTag(line));
  trap([&] { view_.ShowStatus("Administrator Mode"); });
  trap([&] { context_.progress.Enter(CallState::Administrator); });
  trap([&] {
    if (ListView1.Count() > 0) ListView1.Select(1);
  });
  PlayForAdmin();
}

void RemoteAccess::PlayForAdmin() {
  const ErrorTrap trap(context_.log, "ErrPlayForAdmin ");
  if (ListView1.Count() == 0) {
    control_.DropCall();
    return;
  }
  bool dropped = false;
  trap([&] { dropped = !SkipRowsWithoutMessage(); });
  if (dropped) return;
  trap([&] {
    if (context_.Wave1.IsPlaying()) context_.Wave1.StopPlay();
  });
  trap([&] {
    const auto path = folders_.PathOf(ListView1.Row(ListView1.Selected()).key);
    const auto result = context_.Wave1.PlayFile(path, context_.Tapi1.GetWaveDeviceId(context_.Line()));
    if (result != kWaveOk) {
      context_.log.WriteSystem("Error Playing Remote Control " + context_.Wave1.PlayErrorText(result));
      control_.DropCall();
      return;
    }
    context_.call.remote_playback = true;
  });
}

bool RemoteAccess::SkipRowsWithoutMessage() {
  while (ListView1.Row(ListView1.Selected()).key.empty()) {
    if (LastSelected() && context_.Connected()) {
      control_.DropCall();
      return false;
    }
    ListView1.Select(ListView1.Selected() + 1);
  }
  return true;
}

void RemoteAccess::MessagePlayed() {
  if (LastSelected()) {
    control_.DropCall();
    return;
  }
  ListView1.Select(ListView1.Selected() + 1);
  PlayForAdmin();
}

}  // namespace orven
