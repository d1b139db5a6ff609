// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/line/modem/transmitter.h"

#include <algorithm>
#include <array>

#include "adapters/line/modem/shielding.h"

namespace orven {
namespace {

using std::chrono::milliseconds;

/// Enough for a desk computer that is busy, little enough to be purged unnoticed.
constexpr milliseconds kAhead{250};
/// With so little left nothing more will come: the pause between two files is shorter than the rest.
constexpr milliseconds kLast{60};
/// A bell that rings on after the answer is noticed within the longest pause between rings.
constexpr std::size_t kKeptSamples = std::size_t{8} * kSampleRate;

constexpr int kSamplesPerMillisecond = kSampleRate / 1000;

}  // namespace

void Transmitter::Begin(Time now) {
  encoder_.emplace(format_);
  began_ = now;
  sent_ = 0;
}

std::chrono::milliseconds Transmitter::Ahead(Time now) const {
  return milliseconds(sent_ / kSamplesPerMillisecond) - (now - began_);
}

void Transmitter::AdvanceTo(Time now) {
  if (Ahead(now) <= milliseconds(0)) return;
  began_ = now;
  sent_ = 0;
}

bool Transmitter::Due(Time now, std::vector<std::uint8_t>& bytes) {
  // What was not played in time is not made up for: the modem has stood still meanwhile.
  if (Ahead(now) < milliseconds(0)) {
    began_ = now;
    sent_ = 0;
  }
  std::array<std::int16_t, kBlockSamples> block{};
  std::vector<std::uint8_t> plain;
  while (Ahead(now) < kAhead && NextBlock(block)) {
    encoder_->Encode(block, plain);
    sent_ += kBlockSamples;
  }
  AppendShielded(plain, bytes);
  return Ahead(now) > kLast;
}

bool Transmitter::NextBlock(std::span<std::int16_t> block) {
  if (again_ < kept_.size()) {
    std::copy_n(kept_.begin() + static_cast<std::ptrdiff_t>(again_), block.size(), block.begin());
    again_ += block.size();
    return true;
  }
  if (!audio_.Fetch(block)) return false;
  if (kept_.size() < kKeptSamples) {
    kept_.insert(kept_.end(), block.begin(), block.end());
    again_ = kept_.size();
  }
  return true;
}

}  // namespace orven
