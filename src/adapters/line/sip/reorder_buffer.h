// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <vector>

namespace orven {

/// Samples at their place on the stream's own time line.
struct SoundFrame {
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
  const SoundFrame* Front() const;

  /// Takes the earliest frame; there must be one. What lies before its end is late from now on.
  SoundFrame Pop();

  std::size_t BufferedSamples() const { return buffered_; }

 private:
  std::int64_t Place(std::uint32_t ssrc, std::uint32_t timestamp);

  struct Reference {
    std::uint32_t ssrc = 0;
    std::uint32_t timestamp = 0;
    std::int64_t place = 0;
  };

  std::map<std::int64_t, SoundFrame> frames_;
  std::size_t buffered_ = 0;
  std::optional<Reference> reference_;  ///< the latest packet kept
  std::int64_t end_ = 0;                ///< end of the latest frame ever kept
  std::int64_t played_ = 0;             ///< frames must not begin before here
  int late_ = 0;                        ///< packets in a row that came too late
};

}  // namespace orven
