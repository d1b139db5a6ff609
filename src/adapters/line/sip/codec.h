// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace orven {

/// The telephone's two codecs (ITU-T G.711), one byte a sample.
enum class Codec : std::uint8_t { kMuLaw, kALaw };

/// Units of the RTP timestamp in a second (RFC 3551, section 6).
int ClockRate(Codec codec);

/// How many samples at 8000 Hz the payload of a packet becomes; 0 when it holds none.
std::size_t SamplesIn(Codec codec, std::span<const std::uint8_t> payload);

/// Turns a stream's payloads, in order, into samples at 8000 Hz. For one thread.
class Decoder {
 public:
  /// Appends SamplesIn(codec, payload) samples to `samples`.
  void Decode(Codec codec, std::span<const std::uint8_t> payload, std::vector<std::int16_t>& samples);
};

/// Writes one byte for each sample.
void Encode(Codec codec, std::span<const std::int16_t> samples, std::uint8_t* bytes);

}  // namespace orven
