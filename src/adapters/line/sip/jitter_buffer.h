// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <span>
#include <vector>

namespace orven {

/// Samples at their place on the stream's own time line.
struct AudioFrame {
  std::int64_t start = 0;  ///< in samples; grows over the whole call, never wraps
  std::vector<std::int16_t> samples;
};

/// Puts a stream's packets in the order of their timestamps and drops doubles and those that come too
/// late to be played. A stream that starts over (new synchronisation source, or timestamps from
/// elsewhere) continues the time line without a gap. Not for use by several threads.
class ReorderBuffer {
 public:
  /// At most two seconds are kept; beyond it the oldest packet goes.
  static constexpr std::size_t kMostSamples = 16'000;

  /// `ssrc` and `timestamp` are the RTP header's (RFC 3550, section 5.1; 8000 units a second).
  void Push(std::uint32_t ssrc, std::uint32_t timestamp, std::vector<std::int16_t> samples);

  /// The earliest frame, or nullptr when there is none.
  const AudioFrame* Front() const;

  /// Takes the earliest frame; there must be one. What lies before its end is late from now on.
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

/// Turns packets that come when the network brings them into one block every 20 ms of our own clock:
/// waits a little before it begins, conceals what got lost, is silent when nothing comes, and makes up
/// for a sender whose clock runs faster or slower. Sound that arrives in time is passed on bit for
/// bit. Nobody talks with the machine, so its delay may grow rather than late sound be lost.
class JitterBuffer {
 public:
  JitterBuffer();
  ~JitterBuffer();

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
