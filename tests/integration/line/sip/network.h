// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <arpa/inet.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstdint>
#include <string>
#include <system_error>
#include <utility>

namespace orven::test {

using std::chrono::milliseconds;

/// A UDP or TCP socket on 127.0.0.1. Throws when it cannot be made.
class Socket {
 public:
  static Socket Udp(std::uint16_t port = 0) { return {SOCK_DGRAM, ::bind, port}; }
  static Socket TcpTo(std::uint16_t port) { return {SOCK_STREAM, ::connect, port}; }
  static Socket TcpListening(std::uint16_t port = 0) {
    Socket made(SOCK_STREAM, ::bind, port);
    Check(::listen(made.fd_, 4));
    return made;
  }
  Socket(Socket&& other) noexcept : fd_(std::exchange(other.fd_, -1)) {}
  ~Socket() { Close(); }

  std::uint16_t Port() const {
    sockaddr_in address{};
    socklen_t size = sizeof(address);
    Check(::getsockname(fd_, reinterpret_cast<sockaddr*>(&address), &size));
    return ntohs(address.sin_port);
  }
  /// A datagram: bytes or a text.
  template <typename Content>
  void SendTo(std::uint16_t port, const Content& content) const {
    const sockaddr_in to = Loopback(port);
    const auto* address = reinterpret_cast<const sockaddr*>(&to);
    (void)::sendto(fd_, std::data(content), std::size(content), 0, address, sizeof(to));
  }
  /// On a TCP connection; false when it is closed.
  bool Send(const std::string& text) const { return ::send(fd_, &text[0], text.size(), MSG_NOSIGNAL) >= 0; }
  /// The next datagram, or what TCP brings; "" when none comes within `limit` or the connection is closed.
  std::string Receive(milliseconds limit = milliseconds(8000)) const {
    std::string bytes(65'536, 0);
    const ssize_t count = Ready(limit) ? ::recv(fd_, bytes.data(), bytes.size(), 0) : 0;
    return bytes.substr(0, static_cast<std::size_t>(std::max<ssize_t>(count, 0)));
  }
  Socket Accept() const { return Socket(Ready(milliseconds(8000)) ? ::accept(fd_, nullptr, nullptr) : -1); }
  void Close() {
    if (fd_ >= 0) ::close(fd_);
    fd_ = -1;
  }

 private:
  explicit Socket(int fd) : fd_(fd) { Check(fd); }
  /// `apply` is ::bind or ::connect.
  Socket(int type, int (*apply)(int, const sockaddr*, socklen_t), std::uint16_t port)
      : Socket(::socket(AF_INET, type | SOCK_CLOEXEC, 0)) {
    const sockaddr_in address = Loopback(port);
    Check(apply(fd_, reinterpret_cast<const sockaddr*>(&address), sizeof(address)));
  }
  static void Check(int result) {
    if (result < 0) throw std::system_error(errno, std::generic_category(), "socket");
  }
  static sockaddr_in Loopback(std::uint16_t port) {
    return {AF_INET, htons(port), {htonl(INADDR_LOOPBACK)}, {}};
  }
  bool Ready(milliseconds limit) const {
    pollfd wait{fd_, POLLIN, 0};
    return ::poll(&wait, 1, static_cast<int>(limit.count())) > 0;
  }

  int fd_;
};

/// A port that is free for UDP and TCP at this moment.
inline std::uint16_t FreePort() try {
  const Socket udp = Socket::Udp();
  return Socket::TcpListening(udp.Port()).Port();
} catch (const std::system_error&) {
  return FreePort();  // another program has the TCP port
}

}  // namespace orven::test
