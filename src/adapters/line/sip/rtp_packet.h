// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>

namespace orven {

/// The fields of an RTP header that telephone sound uses (RFC 3550, section 5.1).
struct RtpHeader {
  std::uint8_t payload_type = 0;  ///< 0 to 127
  bool marker = false;
  std::uint16_t sequence = 0;
  std::uint32_t timestamp = 0;
  std::uint32_t ssrc = 0;
};

/// A received packet; the payload lies within the datagram.
struct RtpPacket {
  RtpHeader header;
  std::span<const std::uint8_t> payload;
};

inline constexpr std::size_t kRtpHeaderBytes = 12;

/// Comfort noise (RFC 3389): tells only that the peer is silent.
inline constexpr std::uint8_t kComfortNoiseType = 13;

/// Writes kRtpHeaderBytes bytes.
void WriteRtpHeader(const RtpHeader& header, std::uint8_t* bytes);

/// Nothing when the datagram is no well-formed packet of version 2.
std::optional<RtpPacket> ReadRtpPacket(std::span<const std::uint8_t> datagram);

/// Long enough for an RTP packet's header and of version 2; the rest may be encrypted.
bool LooksLikeRtp(std::span<const std::uint8_t> datagram);

/// The beginning of an RTCP packet (RFC 3550, section 6): version 2 and a type of that range.
bool LooksLikeRtcp(std::span<const std::uint8_t> datagram);

}  // namespace orven
