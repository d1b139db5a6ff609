// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <functional>
#include <memory>

#include "notify/line_health.h"
#include "platform/event_loop.h"
#include "platform/notifications.h"

namespace orven {

/// Tells the owner by one notification that the line has been in trouble for a while, and by another, which
/// takes its place, that the trouble is over. User-interface thread.
class LineAlarm {
 public:
  /// `open_window`: a notification was clicked.
  LineAlarm(EventLoop& loop, Notifications& notifications, std::function<void()> open_window);

  /// The line is like this from now on.
  void Take(const LineHealth& line);

 private:
  void Raise();

  Notifications& notifications_;
  const std::function<void()> open_window_;
  Words trouble_;                ///< empty while there is none
  Notifications::Id shown_ = 0;  ///< of the trouble; 0: none
  std::unique_ptr<Timer> tmrPatience_;
};

}  // namespace orven
