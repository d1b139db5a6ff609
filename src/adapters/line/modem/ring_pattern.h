// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <chrono>
#include <optional>

namespace orven {

/// Counts the rings of one call, and says when the caller has given up: no line tells.
class RingPattern {
 public:
  using Time = std::chrono::milliseconds;  ///< of any clock that only goes forward

  /// The modem has said that it rings. The count, from 1; nothing when this is still the same ring.
  std::optional<int> Ring(Time now);

  /// How long after the latest ring nobody calls any more.
  std::chrono::milliseconds Patience() const;

  bool Ringing() const { return count_ > 0; }
  void Reset() { *this = RingPattern(); }

 private:
  int count_ = 0;
  Time latest_{0};    ///< the latest report
  Time counted_{0};   ///< the latest ring
  Time interval_{0};  ///< between rings; 0: not known yet
};

}  // namespace orven
