// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <spandsp.h>

#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <span>
#include <vector>

namespace orven {

/// Samples with their position on the stream's time line.
struct AudioFrame {
  std::int64_t start = 0;  ///< in samples; grows over the whole call, never wraps
  std::vector<std::int16_t> samples;
};

/// Sorts a stream's packets by their timestamps and drops duplicates and late ones. A stream that starts over
/// (a new synchronisation source, or a jump in its timestamps) continues the time line without a gap. For one
/// thread.
class ReorderBuffer {
 public:
  /// At most two seconds are kept; then the oldest packet is dropped.
  static constexpr std::size_t kMostSamples = 16'000;

  /// `ssrc` and `timestamp` are the RTP header's (RFC 3550, section 5.1; 8000 units a second).
  void Push(std::uint32_t ssrc, std::uint32_t timestamp, std::vector<std::int16_t> samples);

  /// The earliest frame, or nullptr when there is none.
  const AudioFrame* Front() const;

  /// Takes the earliest frame; there must be one. What begins before its end is late from now on.
  AudioFrame Pop();

  std::size_t BufferedSamples() const { return buffered_; }

 private:
  std::int64_t Place(std::uint32_t ssrc, std::uint32_t timestamp);

  struct Reference {
    std::uint32_t ssrc = 0;
    std::uint32_t timestamp = 0;
    std::int64_t place = 0;
  };

  std::map<std::int64_t, AudioFrame> frames_;
  std::size_t buffered_ = 0;
  std::optional<Reference> reference_;  ///< the latest packet kept
  std::int64_t end_ = 0;                ///< end of the latest frame ever kept
  std::int64_t played_ = 0;             ///< frames must not begin before here
  int late_ = 0;                        ///< packets in a row that came too late
};

/// Turns packets that arrive irregularly into one block every 20 ms of our own clock: buffers a little before
/// it starts, conceals lost packets, outputs silence when nothing arrives, and compensates for a sender whose
/// clock runs faster or slower. Audio that arrives in time is passed on unchanged. A person does not talk
/// with the machine, so a longer delay is better than lost audio.
class JitterBuffer {
 public:
  JitterBuffer() { plc_init(&concealer_); }

  /// Takes a packet's decoded samples, as ReorderBuffer::Push.
  void Push(std::uint32_t ssrc, std::uint32_t timestamp, std::vector<std::int16_t> samples);

  /// Fills one block (160 samples).
  void Pull(std::span<std::int16_t> block);

  /// No received audio waits to be played.
  bool Empty() const { return reorder_.Front() == nullptr && ready_.empty(); }

 private:
  bool StillFilling();
  void PlayFront();
  void Conceal(std::size_t samples);
  void LimitDelay();

  plc_state_t concealer_{};
  ReorderBuffer reorder_;
  std::vector<std::int16_t> ready_;  ///< decoded and in order, not yet pulled
  std::int64_t position_ = 0;        ///< where the next frame should begin
  std::int64_t concealed_ = 0;       ///< concealment samples since the last real one
  bool filling_ = true;              ///< buffering before the start
  int filling_blocks_ = 0;
  std::size_t least_waiting_ = 0;  ///< in the current observation of the delay
  int observed_blocks_ = 0;
};

}  // namespace orven
