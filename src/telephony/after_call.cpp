// SPDX-License-Identifier: GPL-3.0-or-later
#include "telephony/after_call.h"

namespace orven {

void AfterCall::Announce(const Call& call) {
  if (settings_.cPlayInRing != 0) PlaySound(settings_.PlayInRing);
  if (settings_.ViewDetails == 0 || call.admin_mode) return;
  OpenCallerView();
  // A caller view that is still open from the previous call gets its commands back.
  effects_.caller_view.ShowControl();
  effects_.caller_view.ShowMessage(Words("New Call"));
  effects_.caller_view.ShowRing(Words());
  effects_.caller_view.ShowCall(call);
}

void AfterCall::Finish(Call& call) {
  if (window_hidden_()) effects_.tray.StartBlinking();
  call.mail_due = WantsMail(call);
  File(call);
  effects_.notices.Tell(call);
  const bool wanted = settings_.cOnlyIfGotMessage == 0 || call.message_left;
  if (settings_.cPlayInIdle != 0 && wanted) PlaySound(settings_.PlayInIdle);
  ShowFinished(call);
  RunActions(call);
}

void AfterCall::File(Call& call) {
  if (!IsListed(call)) return filing_.LeaveOut(call);
  filing_.PutCallDetailsInDB(call);
  list_.makeList();
}

void AfterCall::PlaySound(const std::string& name) {
  if (name.empty()) return;
  effects_.sounds.PlayWave(home_.Path("\\Sound\\") + name);
}

void AfterCall::ShowFinished(const Call& call) {
  if (settings_.WhenMsgViewMsg != 0) OpenCallerView();
  if (!effects_.caller_view.IsOpen()) return;
  effects_.caller_view.HideControl();
  effects_.caller_view.ShowCall(call);
  effects_.caller_view.ShowMessage(call.message_left ? Words("New Message") : Words("Call ended"));
}

bool AfterCall::WantsMail(const Call& call) const {
  return settings_.pMailTo != 0 && (call.message_left || settings_.ActionsMailAllCalls != 0);
}

/// The mail before the note: if the program is killed in between, a mail is sent twice rather than never.
void AfterCall::HandMailOver(Call& call) {
  if (WantsMail(call)) effects_.actions.DoActions("Mail", call);
  filing_.MailHandedOver(call);
}

void AfterCall::SendDueMails() {
  for (auto& call : filing_.DueMails()) HandMailOver(call);
}

void AfterCall::RunActions(Call& call) {
  // The mail setting enables both actions.
  if (!call.message_left && settings_.ActionsMailAllCalls == 0) return;
  HandMailOver(call);
  if (settings_.pAppTo != 0) effects_.actions.DoActions("App", call);
}

void AfterCall::OpenCallerView() {
  // A view that a click is just closing must not suppress the next announcement.
  if (effects_.caller_view.IsClosing()) effects_.caller_view.Unload();
  effects_.caller_view.ViewCallViewer(settings_.cAnimation != 0, settings_.AnimationFast,
                                      settings_.cCloseCallerView != 0, settings_.CloseCallerView);
}

}  // namespace orven
