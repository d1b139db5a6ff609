// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/line/sip/rtp.h"

#include <linux/errqueue.h>
#include <netinet/in.h>
#include <sys/socket.h>

#include <cerrno>
#include <utility>

namespace orven {
namespace {

/// Below the range of ephemeral ports.
constexpr std::uint16_t kFirstPort = 16'384;
constexpr std::uint16_t kLastPort = 32'766;
constexpr int kAttempts = 64;

/// Far more than an RTP packet of telephone audio; a longer datagram is cut off and dropped as malformed.
constexpr std::size_t kLargestDatagram = 2'048;

/// Datagrams read at a time: a flood must not keep the loop from the call's other work.
constexpr int kMostPerTurn = 256;

void AskForRefusals(int fd, int family) {
  const int on = 1;
  if (family == AF_INET6) {
    (void)::setsockopt(fd, IPPROTO_IPV6, IPV6_RECVERR, &on, sizeof(on));
  } else {
    (void)::setsockopt(fd, IPPROTO_IP, IP_RECVERR, &on, sizeof(on));
  }
}

}  // namespace

void WriteRtpHeader(const rtp_header& header, std::uint8_t* bytes) {
  rtp_header plain = header;
  plain.ver = RTP_VERSION;
  plain.pad = plain.ext = false;
  plain.cc = 0;
  mbuf view{bytes, RTP_HEADER_SIZE, 0, 0};
  (void)rtp_hdr_encode(&view, &plain);
}

std::optional<RtpPacket> ReadRtpPacket(std::span<const std::uint8_t> datagram) {
  // The library only reads through it.
  mbuf view{const_cast<std::uint8_t*>(datagram.data()), datagram.size(), 0, datagram.size()};
  rtp_header header{};
  if (!LooksLikeRtp(datagram) || rtp_hdr_decode(&header, &view) != 0) return std::nullopt;
  const std::size_t padding = header.pad ? datagram.back() : 0;
  if (mbuf_get_left(&view) < padding || (header.pad && padding == 0)) return std::nullopt;
  return RtpPacket{header, datagram.subspan(view.pos, mbuf_get_left(&view) - padding)};
}

bool LooksLikeRtp(std::span<const std::uint8_t> datagram) {
  return datagram.size() >= RTP_HEADER_SIZE && datagram[0] >> 6 == RTP_VERSION;
}

bool LooksLikeRtcp(std::span<const std::uint8_t> datagram) {
  return datagram.size() >= 8 && datagram[0] >> 6 == RTP_VERSION && datagram[1] >= 192 && datagram[1] <= 223;
}

std::unique_ptr<DatagramSocket> DatagramSocket::Bind(const sa& local, Handlers handlers) {
  udp_sock* raw = nullptr;
  if (udp_listen(&raw, &local, nullptr, nullptr) != 0) return nullptr;
  LibrePtr<udp_sock> socket(raw);
  const int fd = udp_sock_fd(raw, sa_af(&local));
  AskForRefusals(fd, sa_af(&local));
  return std::unique_ptr<DatagramSocket>(new DatagramSocket(std::move(socket), fd, std::move(handlers)));
}

DatagramSocket::DatagramSocket(LibrePtr<udp_sock> socket, int fd, Handlers handlers)
    : socket_(std::move(socket)), fd_(fd), handlers_(std::move(handlers)) {
  // The library's own reader takes one datagram at a time and does not read ICMP errors.
  const auto ready = [](int, void* self) { static_cast<DatagramSocket*>(self)->Drain(); };
  (void)fd_listen(fd_, FD_READ, ready, this);
}

DatagramSocket::~DatagramSocket() = default;

void DatagramSocket::LeaveToDrain() {
  fd_close(fd_);
}

void DatagramSocket::Drain() {
  DrainRefusals();
  std::uint8_t buffer[kLargestDatagram];
  for (int i = 0; i < kMostPerTurn; ++i) {
    sa source{};
    source.len = sizeof(source.u);
    const ssize_t size = ::recvfrom(fd_, buffer, sizeof(buffer), MSG_DONTWAIT, &source.u.sa, &source.len);
    if (size >= 0) {
      handlers_.received(source, {buffer, static_cast<std::size_t>(size)});
    } else if (errno == EAGAIN || errno == EWOULDBLOCK) {
      return;
    }
    // Any other error is another report of a refusal; the next datagram may be fine.
  }
}

void DatagramSocket::DrainRefusals() {
  for (int i = 0; i < kMostPerTurn; ++i) {
    sa destination{};
    std::uint8_t data[64];
    alignas(cmsghdr) char control[512];
    iovec part{data, sizeof(data)};
    msghdr message{};
    message.msg_name = &destination.u;
    message.msg_namelen = sizeof(destination.u);
    message.msg_iov = &part;
    message.msg_iovlen = 1;
    message.msg_control = control;
    message.msg_controllen = sizeof(control);
    if (::recvmsg(fd_, &message, MSG_ERRQUEUE | MSG_DONTWAIT) < 0) return;
    destination.len = message.msg_namelen;
    for (const cmsghdr* header = CMSG_FIRSTHDR(&message); header != nullptr;
         header = CMSG_NXTHDR(&message, const_cast<cmsghdr*>(header))) {
      const auto* error = reinterpret_cast<const sock_extended_err*>(CMSG_DATA(header));
      if (error->ee_errno == ECONNREFUSED) handlers_.refused(destination);
    }
  }
}

void DatagramSocket::Send(const sa& destination, std::span<const std::uint8_t> datagram) {
  // A datagram that cannot be sent counts as lost in the network.
  (void)::sendto(fd_, datagram.data(), datagram.size(), MSG_DONTWAIT, &destination.u.sa, destination.len);
}

std::optional<RtpPorts> BindRtpPorts(const sa& address, const DatagramSocket::Handlers& rtp,
                                     const DatagramSocket::Handlers& rtcp) {
  constexpr std::uint32_t kPairs = (kLastPort - kFirstPort) / 2 + 1;
  for (int attempt = 0; attempt < kAttempts; ++attempt) {
    const auto port = static_cast<std::uint16_t>(kFirstPort + 2 * (rand_u32() % kPairs));
    sa local = address;
    sa_set_port(&local, port);
    auto first = DatagramSocket::Bind(local, rtp);
    if (first == nullptr) continue;
    sa_set_port(&local, static_cast<std::uint16_t>(port + 1));
    auto second = DatagramSocket::Bind(local, rtcp);
    if (second != nullptr) return RtpPorts{std::move(first), std::move(second), port};
  }
  return std::nullopt;
}

}  // namespace orven
