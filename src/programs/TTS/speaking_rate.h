// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <algorithm>
#include <cmath>

namespace orven {

/// Words a minute for a rate of the slider: 0 is the engine's own rate, 10 steps are a factor of three.
/// What lies beyond the slider counts as its end, what lies beyond the engine's range as that's end.
inline int WordsPerMinute(int rate) {
  constexpr int kMostRate = 10;
  constexpr double kFactorOfTenSteps = 3;
  constexpr int kNormal = 175;   // espeakRATE_NORMAL
  constexpr int kSlowest = 80;   // espeakRATE_MINIMUM
  constexpr int kFastest = 450;  // espeakRATE_MAXIMUM
  const double steps = std::clamp(rate, -kMostRate, kMostRate);
  const double words = kNormal * std::pow(kFactorOfTenSteps, steps / kMostRate);
  return std::clamp(static_cast<int>(std::lround(words)), kSlowest, kFastest);
}

}  // namespace orven
