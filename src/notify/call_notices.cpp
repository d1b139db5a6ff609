// SPDX-License-Identifier: GPL-3.0-or-later
#include "notify/call_notices.h"

#include "core/error_trap.h"

namespace orven {
namespace {

bool IsKnown(const std::string& text) {
  return !text.empty() && text != kUnknownCaller;
}

Words Title(const Call& call) {
  const auto& who = IsKnown(call.caller_name) ? call.caller_name : call.caller_number;
  if (!IsKnown(who)) return call.message_left ? Tr("New message") : Tr("Missed call");
  return Words(call.message_left ? Tr("New message from %1") : Tr("Missed call from %1")).Arg(who);
}

/// The number, unless the title has it, the time, and the length of the message, if it is known yet.
Words Text(const Call& call) {
  const bool numbered = IsKnown(call.caller_name) && IsKnown(call.caller_number);
  if (call.type_text == kNoMessageType) {
    return numbered ? Words("%1, at %2").Arg(call.caller_number).Arg(call.time)
                    : Words("At %1").Arg(call.time);
  }
  return numbered ? Words("%1, at %2, %3 seconds").Arg(call.caller_number).Arg(call.time).Arg(call.type_text)
                  : Words("At %1, %2 seconds").Arg(call.time).Arg(call.type_text);
}

}  // namespace

void CallNotices::Tell(const Call& call) {
  // The user's own call, and one that he has dropped, are not news to him.
  if (!call.message_left && (call.admin_mode || call.dropped)) return;
  const char* setting = call.message_left ? "NotifyMessage" : "NotifyMissed";
  if (call.record == kNoRecord || !parts_.store.IsOn(setting) || parts_.in_front()) return;
  const auto row = RowOf(call);
  const auto id = parts_.desktop.Show(Describe(call, row));
  if (row.call == 0) return;
  notices_.push_back({id, row});
  if (notices_.size() <= kMost) return;
  parts_.desktop.Withdraw(notices_.front().id);
  notices_.pop_front();
}

/// The call's row, which is the newest; an empty one when the call could not be filed yet.
CallRow CallNotices::RowOf(const Call& call) const {
  CallRow newest;
  ErrorTrap::Silent()([&] { newest = parts_.list.Row(1); });
  const bool is_its = newest.date == call.date && newest.time == call.time &&
                      newest.name == call.caller_name && newest.number == call.caller_number;
  return is_its ? newest : CallRow();
}

Notification CallNotices::Describe(const Call& call, const CallRow& row) {
  Notification notice{Title(call), Text(call)};
  notice.click = Press(row, parts_.open);
  if (!row.key.empty()) notice.buttons.push_back({Tr("Play"), Press(row, parts_.play)});
  notice.buttons.push_back({Tr("Open"), notice.click});
  return notice;
}

std::function<void()> CallNotices::Press(const CallRow& call,
                                         const std::function<void(const CallRow&)>& act) {
  return [this, call, &act] {
    std::erase_if(notices_, [&](const Notice& notice) { return notice.call.call == call.call; });
    act(call);
  };
}

void CallNotices::MakeSysTryBaloon(std::int32_t total, std::int32_t new_calls) {
  parts_.tray.MakeSysTryBaloon(total, new_calls);
  parts_.desktop.ShowUnread(new_calls);
  std::erase_if(notices_, [this](const Notice& notice) {
    const bool settled = IsSettled(notice.call);
    if (settled) parts_.desktop.Withdraw(notice.id);
    return settled;
  });
}

/// Read or deleted. While the records cannot be read, nothing is known to be.
bool CallNotices::IsSettled(const CallRow& call) const {
  bool settled = false;
  ErrorTrap::Silent()([&] {
    const auto index = parts_.list.RowOf(call);
    const auto icon = index == 0 ? kReadMessage : parts_.list.Row(index).icon;
    settled = icon == kReadMessage || icon == kReadNoMessage;
  });
  return settled;
}

}  // namespace orven
