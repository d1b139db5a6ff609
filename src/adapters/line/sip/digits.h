// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <deque>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <string_view>

#include "adapters/line/sip/rtp.h"

struct dtmf_rx_state_s;

namespace orven {

/// Reads key presses from telephone-event packets (RFC 4733). Each press is sent in many packets, some of
/// them lost or reordered, and reported once. For one thread.
class TelephoneEvents {
 public:
  using Time = std::chrono::steady_clock::time_point;

  enum class Kind : std::uint8_t { kNothing, kPressed, kHeld };
  struct Result {
    Kind kind = Kind::kNothing;
    char digit = 0;  ///< of kPressed: '0'-'9', '*', '#', 'A'-'D'
  };

  /// One packet; kNothing if it is malformed or not a key.
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

/// The key in the body of a SIP INFO request: "Signal=5\r\nDuration=160" (application/dtmf-relay) or
/// the bare key (application/dtmf). Keys may be written as their event codes ("10" is "*", "11" "#").
/// Nothing when it names no key.
std::optional<char> DigitOfInfo(std::string_view body);

/// Detects touch tones (ITU-T Q.23) in received audio, without changing it. For one thread.
class DtmfDetector {
 public:
  /// `heard` is called within Listen, once for each tone, about 50 ms after its beginning.
  explicit DtmfDetector(std::function<void(char)> heard);

  void Listen(std::span<const std::int16_t> block);

 private:
  std::function<void(char)> heard_;
  std::unique_ptr<dtmf_rx_state_s, int (*)(dtmf_rx_state_s*)> state_;
};

/// How a key press reaches us.
enum class DigitSource : std::uint8_t { kTelephoneEvent, kInfo, kInBand };

/// Merges the reports of one key press that arrive in several ways: telephones and gateways often send a
/// press as an event and leave (part of) its tone in the audio, or repeat it in a SIP message. A report
/// belongs to the earliest press of the same key within the last second that its source has not reported yet;
/// a source reports each press once. For one thread.
class DigitMerger {
 public:
  using Time = std::chrono::steady_clock::time_point;

  /// `source` heard `digit` at `now`. True when this is a new press.
  bool Report(DigitSource source, char digit, Time now);

  /// `source` still hears its latest press: the key is held down. Reports from other sources until a second
  /// after its end are the same press.
  void Held(DigitSource source, Time now);

 private:
  struct Press {
    char digit;
    unsigned sources;  ///< one bit for each DigitSource
    Time last;         ///< the latest sign of this press
    bool held;         ///< an event said that the key is down; a tone that breaks off is not a new press
  };

  void Forget(Time now);

  std::deque<Press> presses_;
};

/// Limits key presses to what a telephone can make, so that a program cannot try passwords faster. A press
/// takes 40 ms at least, and so does the pause after it (ITU-T Q.24): one every 60 ms is faster than any
/// telephone. A short burst is allowed, since a stalled network delivers several at once.
class KeyRateLimit {
 public:
  using Time = std::chrono::steady_clock::time_point;

  /// Whether a press at `now` is one that a telephone can have made.
  bool Allows(Time now) {
    const Time due = std::max(now, next_);
    if (due - now > kBurst) return false;
    next_ = due + kShortestPress;
    return true;
  }

 private:
  static constexpr std::chrono::milliseconds kShortestPress{60};
  static constexpr std::chrono::milliseconds kBurst{480};

  Time next_{};
};

}  // namespace orven
