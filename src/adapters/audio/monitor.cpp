// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/audio/monitor.h"

#include <algorithm>
#include <cstdlib>

namespace orven {
namespace {

using namespace std::chrono_literals;
using SteadyClock = std::chrono::steady_clock;

/// Blocks come every 20 ms; a second without one is more than jitter.
constexpr auto kLevelHolds = 1s;

constexpr std::int32_t kFullScale = 32768;

/// Two buffered blocks absorb the usual jitter; beyond four (80 ms, and up to 20 more in the block being
/// captured) a listener begins to notice the delay.
constexpr std::uint64_t kWantedStock = std::uint64_t{2} * kBlockSamples;
constexpr std::uint64_t kMostStock = std::uint64_t{4} * kBlockSamples;

}  // namespace

void PeakMeter::Hear(std::span<const std::int16_t> block, SteadyClock::time_point at) {
  std::int32_t peak = 0;
  for (const std::int16_t sample : block) peak = std::max(peak, std::abs(std::int32_t{sample}));
  level_ = peak * 1000 / kFullScale;
  level_at_ = at.time_since_epoch().count();
}

std::int32_t PeakMeter::Level() const {
  const SteadyClock::time_point at{SteadyClock::duration(level_at_)};
  return SteadyClock::now() - at < kLevelHolds ? level_.load() : 0;
}

void LiveMonitor::Push(std::span<const std::int16_t> block) {
  std::uint64_t at = written_.load(std::memory_order_relaxed);
  for (const std::int16_t sample : block) samples_[at++ % kCapacity].store(sample, std::memory_order_relaxed);
  written_.store(at, std::memory_order_release);
}

bool LiveMonitor::Read(std::span<std::int16_t> block) {
  const std::uint64_t written = written_.load(std::memory_order_acquire);
  if (written - read_ > kMostStock) read_ = written - kWantedStock;
  const std::uint64_t stock = written - read_;
  gathering_ = stock < (gathering_ ? kWantedStock : block.size());
  if (gathering_) {
    std::fill(block.begin(), block.end(), std::int16_t{0});
    return true;
  }
  for (std::int16_t& sample : block) sample = samples_[read_++ % kCapacity].load(std::memory_order_relaxed);
  return true;
}

void LiveMonitor::Restart() {
  read_ = written_.load(std::memory_order_acquire);
  gathering_ = true;
}

}  // namespace orven
