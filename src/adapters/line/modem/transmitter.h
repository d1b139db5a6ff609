// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

#include "adapters/line/modem/sample_codec.h"
#include "adapters/line/service/line_audio.h"

namespace orven {

/// What is played to the caller, as fast as the clock says: a modem's buffer holds a second or less, and
/// what is in it cannot be taken back quickly. Keeps the first seconds of the call, for a caller who turns
/// out not to have heard them. Not for use by several threads.
class Transmitter {
 public:
  using Time = std::chrono::milliseconds;  ///< of any clock that only goes forward

  Transmitter(VoiceFormat format, LineAudio& audio) : format_(std::move(format)), audio_(audio) {}

  /// The modem takes sound from now on.
  void Begin(Time now);

  /// Appends to `bytes` what is due, shielded. False when all that there was will have been played in a
  /// moment, and nothing more is to come.
  bool Due(Time now, std::vector<std::uint8_t>& bytes);

  /// The modem has run out of sound: it needs more from now on.
  void Underrun(Time now) { AdvanceTo(now); }

  /// How much of what was written has not been played yet.
  std::chrono::milliseconds Ahead(Time now) const;

  /// Whether there is something to play.
  bool Wanted() const { return again_ < kept_.size() || audio_.Plays(); }

  /// The caller has heard nothing so far: all of it is played once more, first.
  void StartOver() { again_ = 0; }
  /// What was kept to be played once more is not wanted any longer.
  void Cut() { again_ = kept_.size(); }

 private:
  bool NextBlock(std::span<std::int16_t> block);
  void AdvanceTo(Time now);

  const VoiceFormat format_;
  LineAudio& audio_;
  std::optional<SampleEncoder> encoder_;
  Time began_{0};
  std::int64_t sent_ = 0;           ///< samples, since began_
  std::vector<std::int16_t> kept_;  ///< of the call's first seconds
  std::size_t again_ = 0;           ///< in kept_: from here on it is played once more
};

}  // namespace orven
