// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <array>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <vector>

#include "adapters/line/sip/libre.h"

namespace orven {

/// A received packet; the payload lies within the datagram.
struct RtpPacket {
  rtp_header header;
  std::span<const std::uint8_t> payload;
};

/// Comfort noise (RFC 3389): the peer is silent.
inline constexpr std::uint8_t kComfortNoiseType = 13;

/// Writes RTP_HEADER_SIZE bytes: the fields that telephone audio uses.
void WriteRtpHeader(const rtp_header& header, std::uint8_t* bytes);

/// Nothing unless the datagram is a well-formed packet of version 2.
std::optional<RtpPacket> ReadRtpPacket(std::span<const std::uint8_t> datagram);

/// Version 2 and long enough for an RTP header; the rest may be encrypted.
bool LooksLikeRtp(std::span<const std::uint8_t> datagram);

/// Version 2 and a packet type of RTCP (RFC 3550, section 6); the rest may be encrypted.
bool LooksLikeRtcp(std::span<const std::uint8_t> datagram);

/// A datagram socket that also reports when its datagrams are refused (ICMP port unreachable). Many datagrams
/// cost one call of the system. Made, used and destroyed on the SIP thread.
class DatagramSocket {
 public:
  using Time = std::chrono::steady_clock::time_point;

  struct Handlers {
    /// `arrived` is the system's time, however long the datagram has waited.
    std::function<void(const sa& source, std::span<const std::uint8_t> datagram, Time arrived)> received;
    std::function<void(const sa& destination)> refused;
  };

  /// Nothing when `local` cannot be bound.
  static std::unique_ptr<DatagramSocket> Bind(const sa& local, Handlers handlers);

  DatagramSocket(const DatagramSocket&) = delete;
  DatagramSocket& operator=(const DatagramSocket&) = delete;
  ~DatagramSocket();

  /// Delivers the datagrams that have arrived, up to 256, and returns how many; the event loop does so too,
  /// until LeaveToDrain.
  std::size_t Drain();

  /// From now on only Drain reads. For a caller that drains regularly, being woken for each datagram as well
  /// would only cost time.
  void LeaveToDrain();

  /// Keeps a datagram for Flush, or until there are many.
  void Queue(const sa& destination, std::span<const std::uint8_t> datagram);
  void Flush();

 private:
  /// Datagrams read or sent by one call of the system.
  static constexpr std::size_t kBatch = 16;

  struct Batch;
  struct Outgoing {
    sa destination;
    std::vector<std::uint8_t> datagram;
  };

  DatagramSocket(LibrePtr<udp_sock> socket, int fd, Handlers handlers);
  void DrainRefusals();

  LibrePtr<udp_sock> socket_;
  int fd_;
  Handlers handlers_;
  Time drained_;  ///< what is read now has arrived after that
  std::array<Outgoing, kBatch> queue_;
  std::size_t queued_ = 0;
  bool refused_ = false;  ///< reports of refusals may wait
};

/// A call's pair of ports: an even one for RTP, the next one for RTCP (RFC 3550, section 11).
struct RtpPorts {
  std::unique_ptr<DatagramSocket> rtp;
  std::unique_ptr<DatagramSocket> rtcp;
  std::uint16_t port = 0;  ///< of RTP
};

/// Binds a free pair at `address` (its port is ignored), or nothing when there is none.
std::optional<RtpPorts> BindRtpPorts(const sa& address, const DatagramSocket::Handlers& rtp,
                                     const DatagramSocket::Handlers& rtcp);

}  // namespace orven
