// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/line/sip/jitter_buffer.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <iterator>
#include <utility>

#include "platform/audio_device.h"

namespace orven {
namespace {

/// No network delays a packet for so long; a larger step is a stream that started over.
constexpr std::int32_t kLongestStep = 10 * 8000;

/// After this many late packets in a row the sender's clock was set back.
constexpr int kMostLate = 25;

constexpr std::size_t kBlock = kBlockSamples;

/// Delay before audio is played, so that packets may arrive out of order. 60 ms is enough for home networks
/// and busy computers.
constexpr std::size_t kDelay = 3 * kBlock;
constexpr int kDelayBlocks = 3;

/// After this much silence the stream is paused, and the next audio is delayed again.
constexpr std::int64_t kPause = 10 * std::int64_t{kBlockSamples};

/// A longer gap in the timestamps is a pause of the sender, not loss.
constexpr std::int64_t kLongestLoss = 50 * std::int64_t{kBlockSamples};

/// If the delay never fell below this in 2 s, one block is dropped.
constexpr int kObservationBlocks = 100;
constexpr std::size_t kTooMuchWaiting = 6 * kBlock;

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
  if (!frames_.try_emplace(place, AudioFrame{place, std::move(samples)}).second) return;
  buffered_ += size;
  end_ = std::max(end_, place + static_cast<std::int64_t>(size));
  while (buffered_ > kMostSamples && frames_.size() > 1) (void)Pop();
}

const AudioFrame* ReorderBuffer::Front() const {
  return frames_.empty() ? nullptr : &frames_.begin()->second;
}

AudioFrame ReorderBuffer::Pop() {
  AudioFrame frame = std::move(frames_.begin()->second);
  frames_.erase(frames_.begin());
  buffered_ -= frame.samples.size();
  played_ = std::max(played_, frame.start + static_cast<std::int64_t>(frame.samples.size()));
  return frame;
}

void JitterBuffer::Push(std::uint32_t ssrc, std::uint32_t timestamp, std::vector<std::int16_t> samples) {
  reorder_.Push(ssrc, timestamp, std::move(samples));
}

void JitterBuffer::Pull(std::span<std::int16_t> block) {
  LimitDelay();
  while (ready_.size() < kBlock) {
    if (filling_ && StillFilling()) {
      ready_.resize(kBlock, 0);
    } else if (reorder_.Front() != nullptr) {
      PlayFront();
    } else {
      Conceal(kBlock - ready_.size());
    }
  }
  std::copy_n(ready_.begin(), kBlock, block.begin());
  ready_.erase(ready_.begin(), ready_.begin() + kBlock);
}

bool JitterBuffer::StillFilling() {
  if (reorder_.Front() == nullptr) return true;
  // The wait is bounded, for a sender that stops after a word.
  if (reorder_.BufferedSamples() < kDelay && filling_blocks_++ < kDelayBlocks) return true;
  filling_ = false;
  filling_blocks_ = 0;
  position_ = reorder_.Front()->start;
  concealed_ = 0;
  plc_init(&concealer_);  // audio before the pause must not affect what follows
  return false;
}

void JitterBuffer::PlayFront() {
  const std::int64_t hole = reorder_.Front()->start - position_;
  if (hole > concealed_ && hole <= kLongestLoss) {
    Conceal(static_cast<std::size_t>(std::min<std::int64_t>(hole - concealed_, kBlockSamples)));
    return;
  }
  AudioFrame frame = reorder_.Pop();
  plc_rx(&concealer_, frame.samples.data(), static_cast<int>(frame.samples.size()));
  ready_.insert(ready_.end(), frame.samples.begin(), frame.samples.end());
  position_ = frame.start + static_cast<std::int64_t>(frame.samples.size());
  concealed_ = 0;
}

void JitterBuffer::Conceal(std::size_t samples) {
  samples = std::min(samples, kBlock);
  // The library would rotate its history itself, by a memcpy between ranges that may overlap.
  plc_state_t& state = concealer_;
  std::rotate(std::begin(state.history), std::begin(state.history) + state.buf_ptr, std::end(state.history));
  state.buf_ptr = 0;
  // It always writes the whole overlap with the earlier audio (up to 30 samples), even if fewer are
  // requested.
  std::array<std::int16_t, kBlock> made_up{};
  plc_fillin(&state, made_up.data(), static_cast<int>(samples));
  ready_.insert(ready_.end(), made_up.begin(), made_up.begin() + static_cast<std::ptrdiff_t>(samples));
  concealed_ += static_cast<std::int64_t>(samples);
  if (concealed_ >= kPause && reorder_.Front() == nullptr) filling_ = true;
}

void JitterBuffer::LimitDelay() {
  const std::size_t waiting = reorder_.BufferedSamples() + ready_.size();
  least_waiting_ = observed_blocks_ == 0 ? waiting : std::min(least_waiting_, waiting);
  if (++observed_blocks_ < kObservationBlocks) return;
  observed_blocks_ = 0;
  if (least_waiting_ <= kTooMuchWaiting || filling_) return;
  while (ready_.size() < kBlock && reorder_.Front() != nullptr) PlayFront();
  ready_.erase(ready_.begin(), ready_.begin() + static_cast<std::ptrdiff_t>(std::min(ready_.size(), kBlock)));
}

}  // namespace orven
