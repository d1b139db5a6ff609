// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/line/sip/reorder_buffer.h"

#include <algorithm>
#include <cstdlib>
#include <utility>

namespace orven {
namespace {

/// No network keeps a packet for so long; a larger step is a stream that started over.
constexpr std::int32_t kLongestStep = 10 * 8000;

/// So many late packets in a row are no stragglers: the sender's clock was put back.
constexpr int kMostLate = 25;

}  // namespace

std::int64_t ReorderBuffer::Place(std::uint32_t ssrc, std::uint32_t timestamp) {
  if (reference_) {
    const auto step = static_cast<std::int32_t>(timestamp - reference_->timestamp);
    if (ssrc == reference_->ssrc && std::abs(std::int64_t{step}) <= kLongestStep) {
      return reference_->place + step;
    }
  }
  return end_;
}

void ReorderBuffer::Push(std::uint32_t ssrc, std::uint32_t timestamp, std::vector<std::int16_t> samples) {
  if (samples.empty()) return;
  std::int64_t place = Place(ssrc, timestamp);
  if (place < played_) {
    if (++late_ < kMostLate) return;
    place = end_;
  }
  late_ = 0;
  reference_ = Reference{ssrc, timestamp, place};
  const std::size_t size = samples.size();
  if (!frames_.try_emplace(place, SoundFrame{place, std::move(samples)}).second) return;
  buffered_ += size;
  end_ = std::max(end_, place + static_cast<std::int64_t>(size));
  while (buffered_ > kMostSamples && frames_.size() > 1) (void)Pop();
}

const SoundFrame* ReorderBuffer::Front() const {
  return frames_.empty() ? nullptr : &frames_.begin()->second;
}

SoundFrame ReorderBuffer::Pop() {
  SoundFrame frame = std::move(frames_.begin()->second);
  frames_.erase(frames_.begin());
  buffered_ -= frame.samples.size();
  played_ = std::max(played_, frame.start + static_cast<std::int64_t>(frame.samples.size()));
  return frame;
}

}  // namespace orven
