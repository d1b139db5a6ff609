// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <deque>

#include "adapters/line/modem/tone_spectrum.h"

namespace orven {

/// Tells the tones with which a network ends a call from all else that sounds like one for a moment: they
/// come from a machine. Busy and congestion tones repeat themselves exactly, whatever their country's times
/// are; the dial tone goes on without the least change.
class ToneCadence {
 public:
  enum class Heard : std::uint8_t { Nothing, Busy, Dial };

  /// Each frame in turn.
  Heard Next(const ToneFrame& frame);

 private:
  /// A tone from its beginning to its end, in frames.
  struct Burst {
    int gap = 0;  ///< before it
    int length = 0;
    ToneFrame tone;
  };

  bool Continues(const ToneFrame& frame) const;
  bool Steady(float decibels, float hertz) const;
  bool IsDialTone() const;
  void EndBurst();
  void Forget();
  bool Repeats(std::size_t period) const;
  static bool Alike(const Burst& a, const Burst& b);

  std::deque<ToneFrame> tone_;  ///< what sounds now
  std::deque<Burst> bursts_;    ///< what has sounded
  int length_ = 0;              ///< of what sounds now
  int gap_ = 0;                 ///< since the latest burst
  int quiet_ = 0;               ///< frames within the gap that are silence
};

}  // namespace orven
