// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "adapters/line/sip/libre.h"

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

/// The telephone's two codecs (ITU-T G.711), one byte a sample.
enum class Codec : std::uint8_t { kMuLaw, kALaw };

std::vector<std::int16_t> Decode(Codec codec, std::span<const std::uint8_t> bytes);

/// Writes one byte for each sample.
void Encode(Codec codec, std::span<const std::int16_t> samples, std::uint8_t* bytes);

/// A datagram socket that also learns that its datagrams are refused (ICMP port unreachable). Made,
/// used and destroyed on the SIP thread.
class DatagramSocket {
 public:
  struct Handlers {
    std::function<void(const sa& source, std::span<const std::uint8_t> datagram)> received;
    std::function<void(const sa& destination)> refused;
  };

  /// Nothing when `local` cannot be bound.
  static std::unique_ptr<DatagramSocket> Bind(const sa& local, Handlers handlers);

  DatagramSocket(const DatagramSocket&) = delete;
  DatagramSocket& operator=(const DatagramSocket&) = delete;
  ~DatagramSocket();

  /// Hands over everything that has arrived by now; otherwise the loop does when it comes round.
  void Drain();

  /// From now on only Drain looks for what has arrived: for somebody who calls it so often that to be woken
  /// for each datagram, too, would be work for nothing.
  void LeaveToDrain();

  void Send(const sa& destination, std::span<const std::uint8_t> datagram);

 private:
  DatagramSocket(LibrePtr<udp_sock> socket, int fd, Handlers handlers);
  void DrainRefusals();
  static void Ready(int flags, void* self);

  LibrePtr<udp_sock> socket_;
  int fd_;
  Handlers handlers_;
};

/// A call's pair of ports: an even one for the sound, the next for its control messages (RFC 3550,
/// section 11).
struct RtpPorts {
  std::unique_ptr<DatagramSocket> rtp;
  std::unique_ptr<DatagramSocket> rtcp;
  std::uint16_t port = 0;  ///< of the sound
};

/// Binds a free pair at `address` (its port is ignored), or nothing when there is none.
std::optional<RtpPorts> BindRtpPorts(const sa& address, const DatagramSocket::Handlers& rtp,
                                     const DatagramSocket::Handlers& rtcp);

}  // namespace orven
