// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <chrono>
#include <cstdint>
#include <deque>

namespace orven {

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

}  // namespace orven
