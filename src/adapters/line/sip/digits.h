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

/// The key in the body of a SIP INFO request: "Signal=5\r\nDuration=160" (application/dtmf-relay) or
/// the bare key (application/dtmf). Keys may be written as their event codes ("10" is "*", "11" "#").
/// Nothing when the body names no key.
std::optional<char> DigitOfInfo(std::string_view body);

/// Hears touch tones (ITU-T Q.23) in the received sound, which it leaves as it is. Not for use by
/// several threads.
class DtmfDetector {
 public:
  /// `heard` is called within Listen, once for each tone, some 50 ms after its beginning.
  explicit DtmfDetector(std::function<void(char)> heard);

  void Listen(std::span<const std::int16_t> block);

 private:
  struct Release {
    void operator()(dtmf_rx_state_s* state) const;
  };

  std::function<void(char)> heard_;
  std::unique_ptr<dtmf_rx_state_s, Release> state_;
};

/// The ways in which a key press reaches us.
enum class DigitSource : std::uint8_t { kTelephoneEvent, kInfo, kInBand };

/// Makes one digit of a key press that arrives in more than one way: telephones and gateways often
/// send a press as an event and leave (some of) its tone in the sound, or repeat it in a SIP message.
/// A report belongs to the earliest press of the same key within the last second that its own source
/// has not told yet; a source tells each press once. Not for use by several threads.
class DigitMerger {
 public:
  using Time = std::chrono::steady_clock::time_point;

  /// `source` heard `digit` at `now`. True when this is a new press, to be told.
  bool Report(DigitSource source, char digit, Time now);

  /// `source` still hears its latest press: the key is held down. What other sources tell of it
  /// meanwhile, or within a second after it, is the same press.
  void Held(DigitSource source, Time now);

 private:
  struct Press {
    char digit;
    unsigned sources;  ///< one bit for each DigitSource
    Time last;         ///< the latest sign of this press
    bool held;         ///< an event said that the key is down; a tone that breaks off is no new press
  };

  void Forget(Time now);

  std::deque<Press> presses_;
};

/// Lets no more key presses through than a telephone can make: who tries passwords by machine has to
/// be as slow as one. A press lasts 40 ms at least with as long a pause after it (ITU-T Q.24), so one
/// each 60 ms is faster than any telephone; a short burst may come at once, after a stall of the network.
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
