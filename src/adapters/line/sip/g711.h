// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <span>
#include <vector>

namespace orven {

/// The telephone's two codecs (ITU-T G.711), one byte a sample.
enum class Codec : std::uint8_t { kMuLaw, kALaw };

std::vector<std::int16_t> Decode(Codec codec, std::span<const std::uint8_t> bytes);

/// Writes one byte for each sample.
void Encode(Codec codec, std::span<const std::int16_t> samples, std::uint8_t* bytes);

}  // namespace orven
