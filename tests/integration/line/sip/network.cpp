// SPDX-License-Identifier: GPL-3.0-or-later
#include "integration/line/sip/network.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <stdexcept>

namespace orven::test {
namespace {

sockaddr_in Loopback(std::uint16_t port) {
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_port = htons(port);
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  return address;
}

int Bound(int type, std::uint16_t port) {
  const int fd = ::socket(AF_INET, type | SOCK_CLOEXEC, 0);
  const sockaddr_in address = Loopback(port);
  if (::bind(fd, reinterpret_cast<const sockaddr*>(&address), sizeof(address)) != 0) {
    ::close(fd);
    return -1;
  }
  return fd;
}

}  // namespace

Socket Socket::Udp(std::uint16_t port) {
  const int fd = Bound(SOCK_DGRAM, port);
  if (fd < 0) throw std::runtime_error("cannot bind UDP port " + std::to_string(port));
  return Socket(fd);
}

Socket Socket::TcpTo(std::uint16_t port) {
  const int fd = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
  const sockaddr_in address = Loopback(port);
  if (::connect(fd, reinterpret_cast<const sockaddr*>(&address), sizeof(address)) != 0) {
    ::close(fd);
    throw std::runtime_error("cannot connect to TCP port " + std::to_string(port));
  }
  return Socket(fd);
}

Socket Socket::TcpListening(std::uint16_t port) {
  const int fd = Bound(SOCK_STREAM, port);
  if (fd < 0 || ::listen(fd, 4) != 0)
    throw std::runtime_error("cannot listen on TCP port " + std::to_string(port));
  return Socket(fd);
}

Socket& Socket::operator=(Socket&& other) noexcept {
  std::swap(fd_, other.fd_);
  return *this;
}

Socket::~Socket() {
  Close();
}

void Socket::Close() {
  if (fd_ >= 0) ::close(fd_);
  fd_ = -1;
}

std::uint16_t Socket::Port() const {
  sockaddr_in address{};
  socklen_t size = sizeof(address);
  ::getsockname(fd_, reinterpret_cast<sockaddr*>(&address), &size);
  return ntohs(address.sin_port);
}

void Socket::SendTo(std::uint16_t port, std::span<const std::uint8_t> bytes) const {
  const sockaddr_in address = Loopback(port);
  (void)::sendto(fd_, bytes.data(), bytes.size(), 0, reinterpret_cast<const sockaddr*>(&address),
                 sizeof(address));
}

void Socket::SendTo(std::uint16_t port, const std::string& text) const {
  SendTo(port, {reinterpret_cast<const std::uint8_t*>(text.data()), text.size()});
}

void Socket::Send(const std::string& text) const {
  for (std::size_t sent = 0; sent < text.size();) {
    const ssize_t count = ::send(fd_, text.data() + sent, text.size() - sent, MSG_NOSIGNAL);
    if (count <= 0) return;
    sent += static_cast<std::size_t>(count);
  }
}

bool Socket::Readable(milliseconds limit) const {
  pollfd wait{fd_, POLLIN, 0};
  return ::poll(&wait, 1, static_cast<int>(limit.count())) > 0;
}

std::optional<Socket::Datagram> Socket::Receive(milliseconds limit) const {
  if (!Readable(limit)) return std::nullopt;
  Datagram datagram;
  datagram.bytes.resize(65'536);
  sockaddr_in source{};
  socklen_t size = sizeof(source);
  const ssize_t count = ::recvfrom(fd_, datagram.bytes.data(), datagram.bytes.size(), 0,
                                   reinterpret_cast<sockaddr*>(&source), &size);
  datagram.bytes.resize(count > 0 ? static_cast<std::size_t>(count) : 0);
  datagram.port = ntohs(source.sin_port);
  return datagram;
}

std::optional<Socket> Socket::Accept(milliseconds limit) const {
  if (!Readable(limit)) return std::nullopt;
  const int fd = ::accept4(fd_, nullptr, nullptr, SOCK_CLOEXEC);
  if (fd < 0) return std::nullopt;
  return Socket(fd);
}

std::uint16_t FreePort() {
  for (;;) {
    const Socket udp = Socket::Udp();
    const int fd = Bound(SOCK_STREAM, udp.Port());
    if (fd < 0) continue;
    ::close(fd);
    return udp.Port();
  }
}

}  // namespace orven::test
