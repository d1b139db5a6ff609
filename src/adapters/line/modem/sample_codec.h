// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <vector>

#include "adapters/line/modem/voice_format.h"

namespace orven {

/// Encodes the line's samples (8000 a second, 16 bits) in a modem's format. One per audio stream, because the
/// resampler has state. Not thread-safe.
class SampleEncoder {
 public:
  explicit SampleEncoder(const VoiceFormat& format);
  ~SampleEncoder();

  /// Appends `samples` to `bytes`, not shielded. What the resampler holds back comes with the next call.
  void Encode(std::span<const std::int16_t> samples, std::vector<std::uint8_t>& bytes);

 private:
  class Impl;
  std::unique_ptr<Impl> impl_;
};

/// Decodes a modem's bytes into the line's samples; a sample may be split between two calls. Linear16 at 8000
/// passes unchanged.
class SampleDecoder {
 public:
  explicit SampleDecoder(const VoiceFormat& format);
  ~SampleDecoder();

  void Decode(std::span<const std::uint8_t> bytes, std::vector<std::int16_t>& samples);

 private:
  class Impl;
  std::unique_ptr<Impl> impl_;
};

}  // namespace orven
