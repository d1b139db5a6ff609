// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <chrono>
#include <cstdint>
#include <optional>

#include "adapters/line/sip/rtp_packet.h"

namespace orven {

/// Reads key presses from telephone-event packets (RFC 4733): each is sent many times, lost packets
/// and reordered ones included, and told once. Not for use by several threads.
class TelephoneEvents {
 public:
  using Time = std::chrono::steady_clock::time_point;

  enum class Kind : std::uint8_t { kNothing, kPressed, kHeld };
  struct Result {
    Kind kind = Kind::kNothing;
    char digit = 0;  ///< of kPressed: '0'-'9', '*', '#', 'A'-'D'
  };

  /// One packet. What is no key, or no event at all, gives kNothing.
  Result Take(const RtpPacket& packet, Time now);

 private:
  struct Event {
    std::uint32_t ssrc;
    std::uint8_t code;
    std::uint32_t timestamp;
    std::uint16_t duration;
    bool ended;
    Time last;
  };

  bool Continues(const Event& next, bool marker) const;

  std::optional<Event> current_;
};

}  // namespace orven
