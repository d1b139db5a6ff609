// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/line/modem/ring_pattern.h"

#include <algorithm>

namespace orven {
namespace {

using std::chrono::milliseconds;

/// The parts of a double or distinctive ring are at most so far apart (ITU-T E.180 supplement 2).
constexpr milliseconds kSameRing{1000};

/// No bell rings longer: reports that go on after it are the next ring.
constexpr milliseconds kLongestRing{4000};

/// Longer than the longest usual cadence, 6 s from ring to ring (ITU-T E.180 supplement 2).
constexpr milliseconds kShortestPatience{8000};

}  // namespace

std::optional<int> RingPattern::Ring(Time now) {
  const bool same = count_ > 0 && now - latest_ < kSameRing && now - counted_ < kLongestRing;
  latest_ = now;
  if (same) return std::nullopt;
  if (count_ > 0) interval_ = now - counted_;
  counted_ = now;
  return ++count_;
}

milliseconds RingPattern::Patience() const {
  return std::max(kShortestPatience, interval_ * 3 / 2);
}

}  // namespace orven
