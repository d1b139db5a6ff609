// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/line/sip/rtp.h"

#include <linux/errqueue.h>
#include <netinet/in.h>
#include <sys/socket.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <ctime>
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
constexpr std::size_t kMostPerTurn = 256;

void SwitchOn(int fd, int level, int option) {
  const int on = 1;
  (void)::setsockopt(fd, level, option, &on, sizeof(on));
}

void AskForRefusals(int fd, int family) {
  family == AF_INET6 ? SwitchOn(fd, IPPROTO_IPV6, IPV6_RECVERR) : SwitchOn(fd, IPPROTO_IP, IP_RECVERR);
}

/// How long ago a datagram arrived, by the system's clock `now`; zero when the system does not say.
std::chrono::nanoseconds AgeOf(msghdr& header, const timespec& now) {
  const cmsghdr* const control = CMSG_FIRSTHDR(&header);
  if (control == nullptr || control->cmsg_type != SCM_TIMESTAMPNS) return {};
  timespec arrived{};
  std::memcpy(&arrived, CMSG_DATA(control), sizeof(arrived));
  return std::chrono::seconds(now.tv_sec - arrived.tv_sec) +
         std::chrono::nanoseconds(now.tv_nsec - arrived.tv_nsec);
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

/// Room for datagrams, their senders and the times of their arrival.
struct DatagramSocket::Batch {
  struct Slot {
    sa source{};
    iovec part{};
    alignas(cmsghdr) std::array<char, CMSG_SPACE(sizeof(timespec))> control{};
    std::array<std::uint8_t, kLargestDatagram> data;
  };

  std::array<Slot, kBatch> slots;
  std::array<mmsghdr, kBatch> headers{};

  /// How many datagrams were read; less than none: an error.
  int Receive(int fd) {
    for (std::size_t i = 0; i < kBatch; ++i) {
      Slot& slot = slots[i];
      slot.part = {slot.data.data(), slot.data.size()};
      msghdr& header = headers[i].msg_hdr;
      header.msg_name = &slot.source.u;
      header.msg_namelen = sizeof(slot.source.u);
      header.msg_iov = &slot.part;
      header.msg_iovlen = 1;
      header.msg_control = slot.control.data();
      header.msg_controllen = slot.control.size();
    }
    return ::recvmmsg(fd, headers.data(), kBatch, MSG_DONTWAIT, nullptr);
  }
};

std::unique_ptr<DatagramSocket> DatagramSocket::Bind(const sa& local, Handlers handlers) {
  udp_sock* raw = nullptr;
  if (udp_listen(&raw, &local, nullptr, nullptr) != 0) return nullptr;
  LibrePtr<udp_sock> socket(raw);
  const int fd = udp_sock_fd(raw, sa_af(&local));
  AskForRefusals(fd, sa_af(&local));
  SwitchOn(fd, SOL_SOCKET, SO_TIMESTAMPNS);
  return std::unique_ptr<DatagramSocket>(new DatagramSocket(std::move(socket), fd, std::move(handlers)));
}

DatagramSocket::DatagramSocket(LibrePtr<udp_sock> socket, int fd, Handlers handlers)
    : socket_(std::move(socket)), fd_(fd), handlers_(std::move(handlers)) {
  // The library's own reader takes one datagram at a time and does not read ICMP errors.
  const auto ready = [](int, void* self) {
    static_cast<DatagramSocket*>(self)->refused_ = true;
    static_cast<DatagramSocket*>(self)->Drain();
  };
  (void)fd_listen(fd_, FD_READ, ready, this);
}

DatagramSocket::~DatagramSocket() = default;

void DatagramSocket::LeaveToDrain() {
  fd_close(fd_);
}

std::size_t DatagramSocket::Drain() {
  timespec clock{};
  (void)::clock_gettime(CLOCK_REALTIME, &clock);
  const Time now = std::chrono::steady_clock::now();
  Batch batch;
  std::size_t read = 0;
  for (std::size_t turn = 0; turn < kMostPerTurn; turn += kBatch) {
    if (std::exchange(refused_, false)) DrainRefusals();
    const int count = batch.Receive(fd_);
    // Any other error is the report of a refusal; the next datagram may be fine.
    refused_ = count < 0 && errno != EAGAIN && errno != EWOULDBLOCK;
    if (refused_) continue;
    for (int i = 0; i < count; ++i) {
      auto& slot = batch.slots[static_cast<std::size_t>(i)];
      auto& [header, size] = batch.headers[static_cast<std::size_t>(i)];
      if ((header.msg_flags & MSG_TRUNC) != 0) continue;
      slot.source.len = header.msg_namelen;
      // The system's clock may have been set meanwhile.
      const Time arrived = std::clamp(now - AgeOf(header, clock), std::min(drained_, now), now);
      handlers_.received(slot.source, {slot.data.data(), size}, arrived);
    }
    read += static_cast<std::size_t>(std::max(count, 0));
    if (count < static_cast<int>(kBatch)) break;
  }
  drained_ = now;
  return read;
}

void DatagramSocket::DrainRefusals() {
  for (std::size_t i = 0; i < kMostPerTurn; ++i) {
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

void DatagramSocket::Queue(const sa& destination, std::span<const std::uint8_t> datagram) {
  if (queued_ == kBatch) Flush();
  Outgoing& next = queue_[queued_++];
  next.destination = destination;
  next.datagram.assign(datagram.begin(), datagram.end());
}

void DatagramSocket::Flush() {
  std::array<iovec, kBatch> parts;
  std::array<mmsghdr, kBatch> headers{};
  for (std::size_t i = 0; i < queued_; ++i) {
    auto& [destination, datagram] = queue_[i];
    parts[i] = {datagram.data(), datagram.size()};
    msghdr& header = headers[i].msg_hdr;
    header.msg_name = &destination.u;
    header.msg_namelen = destination.len;
    header.msg_iov = &parts[i];
    header.msg_iovlen = 1;
  }
  for (std::size_t begin = 0; begin < queued_;) {
    const int sent = ::sendmmsg(fd_, &headers[begin], static_cast<unsigned>(queued_ - begin), MSG_DONTWAIT);
    // A datagram that cannot be sent counts as lost in the network; the error may be the report of a refusal.
    refused_ = refused_ || sent < 0;
    begin += static_cast<std::size_t>(std::max(sent, 1));
  }
  queued_ = 0;
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
