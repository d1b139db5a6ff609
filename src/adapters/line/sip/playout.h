// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <vector>

#include "adapters/line/sip/reorder_buffer.h"

namespace orven {

/// Turns packets that come when the network brings them into one block every 20 ms of our own clock:
/// waits a little before it begins, conceals what got lost, is silent when nothing comes, and makes up
/// for a sender whose clock runs faster or slower. Sound that arrives in time is passed on bit for
/// bit. Nobody talks with the machine, so its delay may grow rather than late sound be lost.
class Playout {
 public:
  Playout();
  ~Playout();

  /// Takes a packet's decoded samples; see ReorderBuffer::Push.
  void Push(std::uint32_t ssrc, std::uint32_t timestamp, std::vector<std::int16_t> samples);

  /// Fills one block (160 samples).
  void Pull(std::span<std::int16_t> block);

  /// No received sound is waiting to be played.
  bool Empty() const { return reorder_.Front() == nullptr && ready_.empty(); }

 private:
  bool StillFilling();
  void PlayFront();
  void Conceal(std::size_t samples);
  void LimitDelay();

  struct Concealer;
  std::unique_ptr<Concealer> concealer_;
  ReorderBuffer reorder_;
  std::vector<std::int16_t> ready_;  ///< decoded and in order, not yet pulled
  std::int64_t position_ = 0;        ///< where the next frame should begin
  std::int64_t concealed_ = 0;       ///< samples made up since the last real one
  bool filling_ = true;              ///< waiting until enough is there to begin
  int filling_blocks_ = 0;
  std::size_t least_waiting_ = 0;  ///< in the current observation of the delay
  int observed_blocks_ = 0;
};

}  // namespace orven
