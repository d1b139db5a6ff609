// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <algorithm>
#include <chrono>

namespace orven {

/// Lets no more key presses through than a telephone can make: who tries passwords by machine has to
/// be as slow as one. A press lasts 40 ms at least with as long a pause after it (ITU-T Q.24), so one
/// each 60 ms is faster than any telephone; a short burst may come at once, after a stall of the network.
class KeyPace {
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
