// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <deque>
#include <functional>
#include <mutex>

#include "platform/event_loop.h"
#include "platform/line_driver.h"

namespace orven {

/// Carries a driver's events from the driver's thread to the user-interface thread, in order. The
/// events wait here rather than in the event loop, so that closing a line can deliver the last of
/// them at once.
class DriverEventQueue : public LineDriverEvents {
 public:
  /// `pump` is bound to its owner's life; it runs on the user-interface thread after events came in.
  DriverEventQueue(EventLoop& loop, EventLoop::Task pump) : loop_(loop), pump_(std::move(pump)) {}

  void Offered(CallNumber call) override;
  void Ring(CallNumber call, std::int32_t count) override;
  void CallerId(CallNumber call, const std::string& name, const std::string& number) override;
  void RequestDone(std::int32_t request, std::int32_t result) override;
  void Connected(CallNumber call) override;
  void Digit(CallNumber call, char digit) override;
  void Disconnected(CallNumber call) override;
  void Idle(CallNumber call) override;
  void Trouble(const std::string& text) override;

  /// Delivers the oldest event to `target`. False when none waits. User-interface thread.
  bool DeliverNext(LineDriverEvents& target);

 private:
  using Event = std::function<void(LineDriverEvents&)>;
  void Push(Event event);

  EventLoop& loop_;
  EventLoop::Task pump_;
  std::mutex mutex_;
  std::deque<Event> events_;
};

}  // namespace orven
