// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/line/service/driver_events.h"

namespace orven {

void DriverEventQueue::Push(Event event) {
  {
    const std::lock_guard lock(mutex_);
    events_.push_back(std::move(event));
  }
  loop_.Post(pump_);
}

bool DriverEventQueue::DeliverNext(LineDriverEvents& target) {
  Event event;
  {
    const std::lock_guard lock(mutex_);
    if (events_.empty()) return false;
    event = std::move(events_.front());
    events_.pop_front();
  }
  event(target);
  return true;
}

void DriverEventQueue::Offered(CallNumber call) {
  Push([=](LineDriverEvents& to) { to.Offered(call); });
}

void DriverEventQueue::Ring(CallNumber call, std::int32_t count) {
  Push([=](LineDriverEvents& to) { to.Ring(call, count); });
}

void DriverEventQueue::CallerId(CallNumber call, const std::string& name, const std::string& number) {
  Push([=](LineDriverEvents& to) { to.CallerId(call, name, number); });
}

void DriverEventQueue::RequestDone(std::int32_t request, std::int32_t result) {
  Push([=](LineDriverEvents& to) { to.RequestDone(request, result); });
}

void DriverEventQueue::Connected(CallNumber call) {
  Push([=](LineDriverEvents& to) { to.Connected(call); });
}

void DriverEventQueue::Digit(CallNumber call, char digit) {
  Push([=](LineDriverEvents& to) { to.Digit(call, digit); });
}

void DriverEventQueue::Disconnected(CallNumber call) {
  Push([=](LineDriverEvents& to) { to.Disconnected(call); });
}

void DriverEventQueue::Idle(CallNumber call) {
  Push([=](LineDriverEvents& to) { to.Idle(call); });
}

void DriverEventQueue::Trouble(const std::string& text) {
  Push([=](LineDriverEvents& to) { to.Trouble(text); });
}

}  // namespace orven
