// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <map>
#include <span>
#include <vector>

#include "adapters/line/sip/codec.h"
#include "adapters/line/sip/concealer.h"
#include "adapters/line/sip/placement.h"

namespace orven {

/// What is heard of a call now: turns packets that arrive irregularly into one block every 20 ms of our own
/// clock. Buffers a little before it starts, conceals what has not come in time, outputs silence when nothing
/// arrives, and compensates for a sender whose clock runs faster or slower. For one thread.
class JitterBuffer {
 public:
  /// At most two seconds are kept; then the oldest packet is dropped.
  static constexpr std::int64_t kMostSamples = 16'000;

  /// Takes a packet with audio. What begins before the end of a block that was pulled is late and dropped.
  void Push(const PlacedPacket& packet);

  /// Fills one block (160 samples).
  void Pull(std::span<std::int16_t> block);

  /// No received audio waits to be played.
  bool Empty() const { return frames_.empty() && ready_.empty(); }

  std::int64_t BufferedSamples() const { return buffered_; }

 private:
  struct Frame {
    Codec codec = Codec::kMuLaw;
    std::int64_t samples = 0;
    std::vector<std::uint8_t> payload;
  };

  bool StillFilling();
  void PlayFront();
  void Conceal(std::int64_t samples);
  void DropFront();
  void LimitDelay();

  std::map<std::int64_t, Frame> frames_;  ///< by place
  std::int64_t buffered_ = 0;             ///< samples in them
  std::int64_t played_ = 0;               ///< frames must not begin before here
  Decoder decoder_;
  Concealer concealer_;
  std::vector<std::int16_t> ready_;  ///< decoded and in order, not yet pulled
  std::int64_t position_ = 0;        ///< where the next frame should begin
  std::int64_t concealed_ = 0;       ///< concealment samples since the last real one
  bool filling_ = true;              ///< buffering before the start
  int filling_blocks_ = 0;
  std::int64_t least_waiting_ = 0;  ///< in the current observation of the delay
  int observed_blocks_ = 0;
};

}  // namespace orven
