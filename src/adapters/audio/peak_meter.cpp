// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/audio/peak_meter.h"

#include <algorithm>
#include <cstdlib>

namespace orven {
namespace {

using namespace std::chrono_literals;
using SteadyClock = std::chrono::steady_clock;

/// Blocks come every 20 ms; a second without one is no jitter.
constexpr auto kLevelHolds = 1s;

constexpr std::int32_t kFullScale = 32768;

}  // namespace

void PeakMeter::Write(std::span<const std::int16_t> block) {
  std::int32_t peak = 0;
  for (const std::int16_t sample : block) peak = std::max(peak, std::abs(std::int32_t{sample}));
  level_ = peak * 1000 / kFullScale;
  level_at_ = SteadyClock::now().time_since_epoch().count();
}

std::int32_t PeakMeter::Level() const {
  const SteadyClock::time_point at{SteadyClock::duration(level_at_)};
  return SteadyClock::now() - at < kLevelHolds ? level_.load() : 0;
}

}  // namespace orven
