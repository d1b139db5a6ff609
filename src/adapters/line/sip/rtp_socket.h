// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <string>

#include "adapters/line/sip/libre.h"

namespace orven {

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
  std::unique_ptr<DatagramSocket> sound;
  std::unique_ptr<DatagramSocket> control;
  std::uint16_t port = 0;  ///< of the sound
};

/// Binds a free pair at `address` (its port is ignored), or nothing when there is none.
std::optional<RtpPorts> BindRtpPorts(const sa& address, const DatagramSocket::Handlers& sound,
                                     const DatagramSocket::Handlers& control);

}  // namespace orven
