// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>

namespace orven::emulator {

/// Bytes that mean something behind a <DLE> (ITU-T V.253, clause 9), written down here once more: the
/// emulator shares nothing with what it tests.
inline constexpr std::uint8_t kNulByte = 0x00;
inline constexpr std::uint8_t kEtxByte = 0x03;
inline constexpr std::uint8_t kDleByte = 0x10;
inline constexpr std::uint8_t kCanByte = 0x18;
inline constexpr std::uint8_t kSubByte = 0x1A;
inline constexpr std::uint8_t kEscByte = 0x1B;

}  // namespace orven::emulator
