// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace orven::test {

using std::chrono::milliseconds;

/// A UDP or TCP socket on 127.0.0.1, as plain as they come.
class Socket {
 public:
  struct Datagram {
    std::vector<std::uint8_t> bytes;
    std::uint16_t port = 0;  ///< the sender's
    std::string Text() const { return {bytes.begin(), bytes.end()}; }
  };

  static Socket Udp(std::uint16_t port = 0);
  static Socket TcpTo(std::uint16_t port);
  static Socket TcpListening(std::uint16_t port = 0);
  Socket(Socket&& other) noexcept : fd_(other.fd_) { other.fd_ = -1; }
  Socket& operator=(Socket&& other) noexcept;
  ~Socket();

  std::uint16_t Port() const;
  void SendTo(std::uint16_t port, std::span<const std::uint8_t> bytes) const;
  void SendTo(std::uint16_t port, const std::string& text) const;
  /// Whole text on a TCP connection.
  void Send(const std::string& text) const;
  /// The next datagram (or what TCP brings), nothing when none comes within `limit`. An empty datagram
  /// from TCP means that the connection has ended.
  std::optional<Datagram> Receive(milliseconds limit) const;
  std::optional<Socket> Accept(milliseconds limit) const;
  void Close();

 private:
  explicit Socket(int fd) : fd_(fd) {}
  bool Readable(milliseconds limit) const;

  int fd_;
};

/// A port that is free for UDP and TCP at this moment.
std::uint16_t FreePort();

}  // namespace orven::test
