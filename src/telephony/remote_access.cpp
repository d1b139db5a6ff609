// SPDX-License-Identifier: GPL-3.0-or-later
#include "telephony/remote_access.h"

#include "base/runtime_error.h"
#include "core/error_trap.h"

namespace orven {

void RemoteAccess::MonitorDigit(std::int32_t line, char digit) {
  auto& call = control_.call;
  control_.log.WriteSystem("MonitorDigit" + LineTag(line) + "->" + digit);
  if (recorder_.Recording()) return;
  if (digit == '*') {
    if (call.digit_buffer == control_.settings.Pass) return EnterAdministratorMode(line);
    call.digit_buffer.clear();
  } else {
    call.digit_buffer += digit;
  }
  control_.Tapi1.MonitorDigits(line, true);
  view_.ShowStatus(Words("Monitoring Digits: %1").Arg(call.digit_buffer));
}

void RemoteAccess::EnterAdministratorMode(std::int32_t line) {
  auto& call = control_.call;
  NameUnfiledMessage(line);
  call.admin_mode = true;
  control_.open_calls.LeaveOut(call);
  // A recording that failed to start has left its timers running; they must not end the owner's call.
  recorder_.StopTimers();
  control_.log.WriteSystem("Remote Control " + LineTag(line));
  view_.ShowStatus(Words("Administrator Mode"));
  control_.Enter(CallState::Administrator, "ErrTapiMonitorDigit ");
  place_ = CallList::kTop;
  PlayForAdmin();
}

/// The owner's calls have no record: a message that was recorded before the password is only named in the
/// log.
void RemoteAccess::NameUnfiledMessage(std::int32_t line) {
  const auto& call = control_.call;
  if (!call.message_left || call.admin_mode) return;
  const auto& message = call.message_path.empty() ? call.message_file_name : call.message_path;
  control_.log.WriteSystem("Remote Control " + LineTag(line) + "->the message that was recorded before, " +
                           message + ", is kept without a call record");
}

void RemoteAccess::PlayForAdmin() {
  const ErrorTrap trap(control_.log, "ErrPlayForAdmin ");
  bool playing = false;
  const bool looked = trap([&] { playing = SelectNextMessage() && PlaySelected(); });
  // Hangs up instead of leaving the owner in silence, even when the records fail.
  if (!playing && (looked || control_.Connected())) control_.DropCall();
}

bool RemoteAccess::SelectNextMessage() {
  ListView1.FollowRecords();
  if (ListView1.Count() == 0) return false;
  const auto row = ListView1.NextMessage(place_);
  ListView1.Select(row > 0 ? row : ListView1.Count());
  if (row > 0) place_ = ListView1.Identity(row);
  // Without a call to hang up, this is an error.
  if (row == 0 && !control_.Connected()) throw RuntimeError(ErrorNumber::SubscriptOutOfRange);
  return row > 0;
}

bool RemoteAccess::PlaySelected() {
  auto& wave = control_.Wave1;
  if (wave.IsPlaying()) wave.StopPlay();
  const auto path = folders_.PathOf(ListView1.Row(ListView1.Selected()).key);
  const auto result = wave.PlayFile(path, control_.Tapi1.GetWaveDeviceId(control_.Line()));
  if (result == kWaveOk) return control_.call.remote_playback = true;
  control_.log.WriteSystem("Error Playing Remote Control " + wave.PlayErrorText(result));
  return false;
}

}  // namespace orven
