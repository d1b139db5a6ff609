// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/line/sip/rtp_packet.h"

namespace orven {
namespace {

constexpr unsigned kVersion = 2;

std::uint16_t Read16(const std::uint8_t* bytes) {
  return static_cast<std::uint16_t>(bytes[0] << 8 | bytes[1]);
}

std::uint32_t Read32(const std::uint8_t* bytes) {
  return static_cast<std::uint32_t>(Read16(bytes)) << 16 | Read16(bytes + 2);
}

void Write32(std::uint32_t value, std::uint8_t* bytes) {
  for (int i = 0; i < 4; ++i) bytes[i] = static_cast<std::uint8_t>(value >> (24 - 8 * i));
}

}  // namespace

void WriteRtpHeader(const RtpHeader& header, std::uint8_t* bytes) {
  bytes[0] = kVersion << 6;
  bytes[1] = static_cast<std::uint8_t>((header.marker ? 0x80 : 0) | header.payload_type);
  bytes[2] = static_cast<std::uint8_t>(header.sequence >> 8);
  bytes[3] = static_cast<std::uint8_t>(header.sequence);
  Write32(header.timestamp, bytes + 4);
  Write32(header.ssrc, bytes + 8);
}

std::optional<RtpPacket> ReadRtpPacket(std::span<const std::uint8_t> datagram) {
  if (!LooksLikeRtp(datagram)) return std::nullopt;
  const bool padded = (datagram[0] & 0x20) != 0;
  const bool extended = (datagram[0] & 0x10) != 0;
  std::size_t begin = kRtpHeaderBytes + std::size_t{4} * (datagram[0] & 0x0FU);
  if (extended) {
    if (datagram.size() < begin + 4) return std::nullopt;
    begin += 4 + std::size_t{4} * Read16(datagram.data() + begin + 2);
  }
  const std::size_t padding = padded ? datagram.back() : 0;
  if (datagram.size() < begin + padding || (padded && padding == 0)) return std::nullopt;
  RtpPacket packet;
  packet.header.payload_type = datagram[1] & 0x7F;
  packet.header.marker = (datagram[1] & 0x80) != 0;
  packet.header.sequence = Read16(datagram.data() + 2);
  packet.header.timestamp = Read32(datagram.data() + 4);
  packet.header.ssrc = Read32(datagram.data() + 8);
  packet.payload = datagram.subspan(begin, datagram.size() - begin - padding);
  return packet;
}

bool LooksLikeRtp(std::span<const std::uint8_t> datagram) {
  return datagram.size() >= kRtpHeaderBytes && datagram[0] >> 6 == kVersion;
}

bool LooksLikeRtcp(std::span<const std::uint8_t> datagram) {
  return datagram.size() >= 8 && datagram[0] >> 6 == kVersion && datagram[1] >= 192 && datagram[1] <= 223;
}

}  // namespace orven
