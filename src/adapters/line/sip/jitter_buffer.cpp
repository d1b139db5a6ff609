// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/line/sip/jitter_buffer.h"

#include <algorithm>
#include <iterator>
#include <utility>

#include "platform/audio_device.h"

namespace orven {
namespace {

constexpr std::int64_t kBlock = kBlockSamples;

/// Delay before audio is played, so that packets may arrive out of order. 60 ms is enough for home networks
/// and busy computers.
constexpr std::int64_t kDelay = 3 * kBlock;
constexpr int kDelayBlocks = 3;

/// After this much silence the stream is paused, and the next audio is delayed again.
constexpr std::int64_t kPause = 10 * kBlock;

/// A longer gap is a pause of the sender, not loss.
constexpr std::int64_t kLongestLoss = 50 * kBlock;

/// If the delay never fell below this in 2 s, one block is dropped.
constexpr int kObservationBlocks = 100;
constexpr std::int64_t kTooMuchWaiting = 6 * kBlock;

}  // namespace

void JitterBuffer::Push(const PlacedPacket& packet) {
  if (packet.place < played_) return;
  Frame frame{packet.codec, packet.samples, {packet.payload.begin(), packet.payload.end()}};
  if (!frames_.try_emplace(packet.place, std::move(frame)).second) return;
  buffered_ += packet.samples;
  while (buffered_ > kMostSamples && frames_.size() > 1) DropFront();
}

void JitterBuffer::DropFront() {
  const auto& [place, frame] = *frames_.begin();
  buffered_ -= frame.samples;
  played_ = std::max(played_, place + frame.samples);
  frames_.erase(frames_.begin());
}

void JitterBuffer::Pull(std::span<std::int16_t> block) {
  LimitDelay();
  while (std::ssize(ready_) < kBlock) {
    if (filling_ && StillFilling()) {
      ready_.resize(kBlock, 0);
    } else if (!frames_.empty()) {
      PlayFront();
    } else {
      Conceal(kBlock - std::ssize(ready_));
    }
  }
  std::copy_n(ready_.begin(), kBlock, block.begin());
  ready_.erase(ready_.begin(), ready_.begin() + kBlock);
}

bool JitterBuffer::StillFilling() {
  if (frames_.empty()) return true;
  // The wait is bounded, for a sender that stops after a word.
  if (buffered_ < kDelay && filling_blocks_++ < kDelayBlocks) return true;
  filling_ = false;
  filling_blocks_ = 0;
  position_ = frames_.begin()->first;
  concealed_ = 0;
  concealer_.Restart();
  return false;
}

void JitterBuffer::PlayFront() {
  const auto& [place, frame] = *frames_.begin();
  const std::int64_t hole = place - position_;
  if (hole > concealed_ && hole <= kLongestLoss) return Conceal(std::min(hole - concealed_, kBlock));
  const std::size_t begin = ready_.size();
  decoder_.Decode(frame.codec, frame.payload, ready_);
  concealer_.Follow(std::span(ready_).subspan(begin));
  position_ = place + frame.samples;
  concealed_ = 0;
  DropFront();
}

void JitterBuffer::Conceal(std::int64_t samples) {
  concealer_.Conceal(static_cast<std::size_t>(samples), ready_);
  concealed_ += samples;
  if (concealed_ >= kPause && frames_.empty()) filling_ = true;
}

void JitterBuffer::LimitDelay() {
  const std::int64_t waiting = buffered_ + std::ssize(ready_);
  least_waiting_ = observed_blocks_ == 0 ? waiting : std::min(least_waiting_, waiting);
  if (++observed_blocks_ < kObservationBlocks) return;
  observed_blocks_ = 0;
  if (least_waiting_ <= kTooMuchWaiting || filling_) return;
  while (std::ssize(ready_) < kBlock && !frames_.empty()) PlayFront();
  ready_.erase(ready_.begin(), ready_.begin() + std::min<std::ptrdiff_t>(std::ssize(ready_), kBlock));
}

}  // namespace orven
