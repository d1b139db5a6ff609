// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace orven {

/// How sound is encrypted and authenticated (RFC 3711); the number is that of the tag's bits.
enum class SrtpSuite : std::uint8_t { kTag80, kTag32 };

/// Master key (16 bytes) and master salt (14 bytes), one after the other. Secret: never in a log.
using SrtpKey = std::array<std::uint8_t, 30>;

/// One way to encrypt that a session description names in "a=crypto" (RFC 4568).
struct CryptoAttribute {
  std::uint32_t tag = 0;
  SrtpSuite suite = SrtpSuite::kTag80;
  SrtpKey key{};  ///< with which its author will send
};

/// Reads "1 AES_CM_128_HMAC_SHA1_80 inline:…" (the part behind "a=crypto:"). Nothing when it is
/// malformed or asks for what we cannot do: another suite, several keys, a key identifier in each packet
/// (MKI), or any session parameter but the window hint, since the others change the packets.
std::optional<CryptoAttribute> ReadCryptoAttribute(std::string_view text);

/// The same text for an attribute of ours.
std::string WriteCryptoAttribute(const CryptoAttribute& attribute);

/// A fresh key from the system's source of secrets. Throws std::runtime_error when that fails.
SrtpKey NewSrtpKey();

}  // namespace orven
