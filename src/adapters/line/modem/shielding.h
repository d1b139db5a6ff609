// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <span>
#include <vector>

namespace orven {

/// The bytes that mean something behind a <DLE> (ITU-T V.253, clause 9). A <DLE> that is sound is doubled.
inline constexpr std::uint8_t kDle = 0x10;
inline constexpr std::uint8_t kEtx = 0x03;  ///< the sound ends here
inline constexpr std::uint8_t kCan = 0x18;  ///< from us: throw away what has not been played
inline constexpr std::uint8_t kSub = 0x1A;  ///< from the modem: two <DLE> that are sound
inline constexpr std::uint8_t kEsc = 0x1B;  ///< ends receiving

/// Appends `sound` to `out` as a modem takes it.
void AppendShielded(std::span<const std::uint8_t> sound, std::vector<std::uint8_t>& out);

}  // namespace orven
