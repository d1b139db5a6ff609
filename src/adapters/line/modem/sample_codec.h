// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <vector>

#include "adapters/line/modem/voice_format.h"

namespace orven {

/// Writes the line's samples (8000 a second, 16 bits) in a modem's format. One for each stretch of sound:
/// between 8000 and another rate it remembers what came before. Not for use by several threads.
class SampleEncoder {
 public:
  explicit SampleEncoder(const VoiceFormat& format);
  ~SampleEncoder();

  /// Appends `samples` to `bytes`, not shielded. What the resampler still holds comes with the next ones.
  void Encode(std::span<const std::int16_t> samples, std::vector<std::uint8_t>& bytes);

 private:
  class Impl;
  std::unique_ptr<Impl> impl_;
};

/// The same backwards; a sample may be split between two calls. Bit for bit in Linear16 at 8000.
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
