// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <vector>

#include "adapters/audio/resampler.h"
#include "adapters/line/modem/voice_format.h"

namespace orven {

/// Converts between the line's rate and the modem's; equal rates pass unchanged.
class RateConverter {
 public:
  RateConverter(int from, int to);

  /// The result is valid until the next call or until `samples` change.
  std::span<const std::int16_t> Convert(std::span<const std::int16_t> samples);

 private:
  std::optional<Resampler> resampler_;
  std::vector<float> input_;
  std::vector<std::int16_t> output_;
};

/// Encodes the line's samples (8000 a second, 16 bits) in a modem's format. One per audio stream, because the
/// resampler has state. Not thread-safe.
class SampleEncoder {
 public:
  explicit SampleEncoder(const VoiceFormat& format);

  /// Appends `samples` to `bytes`, not shielded. What the resampler holds back comes with the next call.
  void Encode(std::span<const std::int16_t> samples, std::vector<std::uint8_t>& bytes);

 private:
  SampleKind kind_;
  RateConverter rate_;
};

/// Decodes a modem's bytes into the line's samples; a sample may be split between two calls. Linear16 at 8000
/// passes unchanged.
class SampleDecoder {
 public:
  explicit SampleDecoder(const VoiceFormat& format);

  void Decode(std::span<const std::uint8_t> bytes, std::vector<std::int16_t>& samples);

 private:
  SampleKind kind_;
  RateConverter rate_;
  std::optional<std::uint8_t> low_;  ///< of a sample whose high byte has not come yet
  std::vector<std::int16_t> modem_;  ///< at the modem's rate
};

}  // namespace orven
