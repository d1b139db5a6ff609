// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <string>

#include "adapters/line/sip/libre.h"

namespace orven {

/// A 180 for a caller who requires to know that it arrives (RFC 3262): it is repeated, with growing pauses,
/// until the caller confirms it with PRACK. The library knows nothing of this. SIP thread.
class ReliableRinging {
 public:
  struct Events {
    std::function<void()> repeat;   ///< the 180 is to be sent again
    std::function<void()> unheard;  ///< not confirmed within the patience: the call cannot go on
  };

  /// Whether the caller of `invite` requires this. Who only supports it does not need it: if a 180 is lost,
  /// its caller hears no ringing tone, and still hears the greeting.
  static bool IsRequiredBy(const sip_msg& invite);

  /// Begins when the 180 to `invite` is sent for the first time.
  ReliableRinging(const sip_msg& invite, std::chrono::milliseconds patience, Events events);

  /// The header lines that make the 180 a reliable one.
  std::string Headers() const;

  /// Takes a PRACK of the same dialog. False if it does not confirm the 180, or not for the first time.
  bool Confirm(const sip_msg& prack);

  /// The INVITE has its final answer, so nothing is repeated any more. A PRACK that is under way still
  /// confirms.
  void Stop() { timer_.Stop(); }

 private:
  using Clock = std::chrono::steady_clock;

  void Wait();
  void Fire();

  const Events events_;
  const std::uint32_t number_;    ///< of the 180: RSeq
  const std::uint32_t sequence_;  ///< of the INVITE: CSeq
  const Clock::time_point end_;
  std::chrono::milliseconds pause_;
  bool confirmed_ = false;
  MonotonicTimer timer_;
};

}  // namespace orven
