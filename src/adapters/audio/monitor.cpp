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

/// Bits of a remembered level (0 to 1000); the microseconds of the steady clock have the rest.
constexpr int kLevelBits = 10;
constexpr std::uint64_t kLevelMask = (1U << kLevelBits) - 1;

std::chrono::microseconds Microseconds(SteadyClock::time_point at) {
  return std::chrono::floor<std::chrono::microseconds>(at.time_since_epoch());
}

/// Two buffered blocks absorb the usual jitter; beyond four (80 ms, and up to 20 more in the block being
/// captured) a listener begins to notice the delay.
constexpr std::uint64_t kWantedStock = std::uint64_t{2} * kBlockSamples;
constexpr std::uint64_t kMostStock = std::uint64_t{4} * kBlockSamples;

constexpr int kObservedReads = 50;

}  // namespace

void PeakMeter::Hear(std::span<const std::int16_t> block, SteadyClock::time_point at) {
  std::int32_t peak = 0;
  for (const std::int16_t sample : block) peak = std::max(peak, std::abs(std::int32_t{sample}));
  const auto level = static_cast<Heard>(peak * 1000 / kFullScale);
  const auto count = count_.load(std::memory_order_relaxed);
  heard_[count % kRemembered] = static_cast<Heard>(Microseconds(at).count()) << kLevelBits | level;
  count_ = count + 1;
}

std::int32_t PeakMeter::Level(std::chrono::milliseconds ago) const {
  const auto moment = Microseconds(SteadyClock::now()) - ago;
  const auto count = count_.load();
  for (std::size_t back = 1; back <= std::min(count, kRemembered); ++back) {
    const Heard heard = heard_[(count - back) % kRemembered];
    const std::chrono::microseconds at(heard >> kLevelBits);
    if (at > moment) continue;
    return moment - at < kLevelHolds ? static_cast<std::int32_t>(heard & kLevelMask) : 0;
  }
  return 0;
}

void LiveMonitor::Push(std::span<const std::int16_t> block) {
  if (!open_) return;
  std::uint64_t at = written_.load(std::memory_order_relaxed);
  for (const std::int16_t sample : block) samples_[at++ % kCapacity].store(sample, std::memory_order_relaxed);
  written_.store(at, std::memory_order_release);
}

bool LiveMonitor::Read(std::span<std::int16_t> block) {
  const std::uint64_t written = written_.load(std::memory_order_acquire);
  Trim(written);
  const std::uint64_t stock = written - read_;
  gathering_ = stock < (gathering_ ? kWantedStock : block.size());
  if (gathering_) {
    std::fill(block.begin(), block.end(), std::int16_t{0});
    return true;
  }
  for (std::int16_t& sample : block) sample = samples_[read_++ % kCapacity].load(std::memory_order_relaxed);
  return true;
}

/// Stock that no read of the latest second needed is only delay, and so is more than the wanted stock where
/// the player begins.
void LiveMonitor::Trim(std::uint64_t written) {
  if (written - read_ > (gathering_ ? kWantedStock : kMostStock)) read_ = written - kWantedStock;
  const std::uint64_t stock = written - read_;
  least_stock_ = observed_reads_ == 0 ? stock : std::min(least_stock_, stock);
  observed_reads_ = (observed_reads_ + 1) % kObservedReads;
  if (observed_reads_ == 0 && least_stock_ > kWantedStock) read_ += least_stock_ - kWantedStock;
}

void LiveMonitor::SetOpen(bool open) {
  open_ = open;
  read_ = written_.load(std::memory_order_acquire);
  gathering_ = true;
}

}  // namespace orven
