// SPDX-License-Identifier: GPL-3.0-or-later
#include "notify/line_alarm.h"

#include <utility>

namespace orven {
namespace {

/// Most trouble is over sooner: a router restarts its telephony, a laptop changes its network.
constexpr std::chrono::seconds kPatience{30};

}  // namespace

LineAlarm::LineAlarm(EventLoop& loop, Notifications& notifications, std::function<void()> open_window)
    : notifications_(notifications),
      open_window_(std::move(open_window)),
      tmrPatience_(loop.MakeTimer([this] { Raise(); })) {}

void LineAlarm::Take(const LineHealth& line) {
  const bool before = !trouble_.Empty();
  trouble_ = line.trouble;
  if (!trouble_.Empty()) {
    if (!before) tmrPatience_->Start(kPatience);
    return;
  }
  tmrPatience_->Stop();
  const auto shown = std::exchange(shown_, 0);
  if (shown == 0) return;
  if (!line.on) return notifications_.Withdraw(shown);
  notifications_.Show({Words("The telephone line works again"), Words("Calls can come in.")}, shown);
}

void LineAlarm::Raise() {
  tmrPatience_->Stop();
  shown_ = notifications_.Show({.title = Words("Trouble with the telephone line"),
                                .text = Words("%1.").Arg(trouble_),
                                .urgent = true,
                                .click = open_window_});
}

}  // namespace orven
