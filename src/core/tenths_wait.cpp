// SPDX-License-Identifier: GPL-3.0-or-later
#include "core/tenths_wait.h"

#include <cmath>

namespace orven {

std::chrono::milliseconds TenthsWait(std::chrono::milliseconds now, int tenths) {
  constexpr double kTenth = 100;
  const double target = std::nearbyint(static_cast<double>(now.count()) / kTenth + tenths);
  // The wait is over once the uptime has passed the target.
  return std::chrono::milliseconds(static_cast<std::int64_t>(target * kTenth) + 1) - now;
}

}  // namespace orven
