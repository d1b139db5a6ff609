// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <chrono>
#include <functional>
#include <string>

#include "adapters/line/sip/libre.h"

namespace orven {

/// A call's session timer (RFC 4028), if its INVITE asks for one: one side confirms within each interval that
/// the call goes on, else the other side, and the proxies between them, take it for over. The terms of the
/// INVITE hold for the whole call. SIP thread.
class SessionTimer {
 public:
  struct Events {
    std::function<void()> refresh;  ///< it is our turn to confirm the call
    std::function<void()> expired;  ///< nobody has confirmed it: it is to be ended
  };

  /// Whether `request` wants an interval below `shortest`, and its sender understands a 422.
  static bool IsTooBrief(const sip_msg& request, std::chrono::seconds shortest);

  /// Without Session-Expires in `invite`, or with an interval below `shortest`, there is no timer. The caller
  /// confirms if it can and does not ask us to.
  SessionTimer(const sip_msg& invite, std::chrono::seconds shortest, Events events);

  /// The header lines of our answers to the caller's INVITE and UPDATE, and of our re-INVITE; empty without a
  /// timer.
  std::string Headers() const;

  /// Begins to count: the call has been answered, or confirmed by an INVITE or UPDATE of either side.
  void Restart();

  void Stop() { timer_.Stop(); }

 private:
  void Fire();

  const Events events_;
  std::chrono::seconds interval_{0};  ///< 0: no timer
  bool ours_ = false;                 ///< we confirm
  bool confirming_ = false;           ///< our confirmation of this interval is under way
  MonotonicTimer timer_;
};

}  // namespace orven
