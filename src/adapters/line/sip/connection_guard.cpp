// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/line/sip/connection_guard.h"

#include <fcntl.h>
#include <linux/tcp.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/epoll.h>
#include <sys/ioctl.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <exception>
#include <utility>

namespace orven {
namespace {

/// Limits for the connections from one address, and from all. A line has 512 descriptors: these limits leave
/// enough for the account's server, a call and everything else.
constexpr std::size_t kMostOfOnePeer = 32;
constexpr std::size_t kMostInAll = 128;

/// A message has 64 KB at most.
constexpr std::uint64_t kMostWithoutMessage = 128 * 1024;

/// The library closes a connection when a further read of 8 KB brings an incomplete message to 64 KB; with
/// smaller reads, messages of 60 KB can follow each other.
constexpr std::size_t kPiece = 4096;

/// Unread bytes in the system's buffer after which we assume that a peer does not read. Our answers have 1
/// KB.
constexpr int kMostUnread = 64 * 1024;

/// Time for a peer to read its answers. Meanwhile the library buffers up to 700 bytes for each 4 that arrive
/// (an answer to an empty line), 22 MB for kMostWithoutMessage, which is why that limit is low.
constexpr std::chrono::seconds kPatience{1};
constexpr int kMostStuck = 2;

/// A new connection has this time for its first message; after that it is closed before others.
constexpr std::uint32_t kFirstMessageMs = 5'000;

/// How long after its announcement an accepted connection is looked for, and how often we look in any case.
constexpr std::chrono::milliseconds kSoon{10};
constexpr std::chrono::seconds kTick{10};

/// After the first try, a second, two and four pass between the further ones, and it is given up after 15 s.
constexpr int kConnectingTries = 3;

/// The system's own probes of a silent connection, which also keep routers from forgetting it, and the time
/// without an answer to them or to data after which it is closed.
constexpr int kProbeAfterSeconds = 25;
constexpr int kProbeEverySeconds = 5;
constexpr int kGoneMs = 20'000;

int OptionOf(int descriptor, int option) {
  int value = 0;
  socklen_t size = sizeof(value);
  return ::getsockopt(descriptor, SOL_SOCKET, option, &value, &size) == 0 ? value : -1;
}

bool IsListening(int descriptor) {
  return OptionOf(descriptor, SO_ACCEPTCONN) == 1;
}

tcp_info InfoOf(int descriptor) {
  tcp_info info{};
  socklen_t size = sizeof(info);
  (void)::getsockopt(descriptor, IPPROTO_TCP, TCP_INFO, &info, &size);
  return info;
}

/// Bytes that the library has read from a connection, without those in the system's buffer.
std::uint64_t TakenFrom(int descriptor) {
  const std::uint64_t received = InfoOf(descriptor).tcpi_bytes_received;
  int waiting = 0;
  (void)::ioctl(descriptor, FIONREAD, &waiting);
  return received - std::min(received, static_cast<std::uint64_t>(waiting));
}

bool CanSend(int descriptor) {
  pollfd state{descriptor, POLLOUT, 0};
  return ::poll(&state, 1, 0) == 1 && (state.revents & POLLOUT) != 0;
}

int DescriptorOf(const sip_msg& message) {
  const tcp_conn* const connection = sip_msg_tcpconn(&message);
  const int descriptor = connection != nullptr ? tcp_conn_fd(connection) : -1;
  return descriptor < kMostDescriptors ? descriptor : -1;
}

template <typename Ask>
sa AddressBy(Ask ask, int descriptor) {
  sa address{};
  address.len = sizeof(address.u);
  return ask(descriptor, &address.u.sa, &address.len) == 0 ? address : sa{};
}

}  // namespace

void CloseConnection(int descriptor) {
  const linger at_once{1, 0};
  (void)::setsockopt(descriptor, SOL_SOCKET, SO_LINGER, &at_once, sizeof(at_once));
  (void)::shutdown(descriptor, SHUT_RDWR);
}

ImpatientConnection::ImpatientConnection() : next_(::open("/dev/null", O_RDONLY | O_CLOEXEC)) {
  if (next_ >= 0) ::close(next_);
}

ImpatientConnection::~ImpatientConnection() {
  if (OptionOf(next_, SO_TYPE) != SOCK_STREAM) return;
  const auto set = [this](int level, int option, int value) {
    (void)::setsockopt(next_, level, option, &value, sizeof(value));
  };
  set(IPPROTO_TCP, TCP_SYNCNT, kConnectingTries);
  set(IPPROTO_TCP, TCP_USER_TIMEOUT, kGoneMs);
  set(IPPROTO_TCP, TCP_KEEPIDLE, kProbeAfterSeconds);
  set(IPPROTO_TCP, TCP_KEEPINTVL, kProbeEverySeconds);
  set(SOL_SOCKET, SO_KEEPALIVE, 1);
}

ConnectionGuard::ConnectionGuard(std::function<bool(const sa&)> is_ours)
    : is_ours_(std::move(is_ours)),
      soon_([this] { Look(); }),
      patience_([this] { Look(); }),
      tick_([this] { Look(); }) {}

void ConnectionGuard::Start() {
  ready_ = ::epoll_create1(EPOLL_CLOEXEC);
  const auto take = [](int, void* self) { static_cast<ConnectionGuard*>(self)->TakeReady(); };
  if (ready_ >= 0) (void)fd_listen(ready_, FD_READ, take, this);
  tick_.StartPeriodic(kTick);
  Look();
}

void ConnectionGuard::Stop() {
  soon_.Stop();
  patience_.Stop();
  tick_.Stop();
  if (ready_ < 0) return;
  fd_close(ready_);
  ::close(ready_);
  ready_ = -1;
}

void ConnectionGuard::Look() {
  std::vector<Connection> connections;
  for (int descriptor = 0; descriptor < kMostDescriptors; ++descriptor) {
    if (!Watch(descriptor)) {
      watched_[static_cast<std::size_t>(descriptor)] = {};
    } else if (IsListening(descriptor)) {
      continue;
    } else if (GoesTooFar(descriptor)) {
      CloseConnection(descriptor);
    } else {
      connections.push_back(Describe(descriptor));
    }
  }
  CloseExcess(std::move(connections));
}

/// Whether the socket is this line's, listening or connected. Begins to watch a new one.
bool ConnectionGuard::Watch(int descriptor) {
  const sa local = AddressBy(::getsockname, descriptor);
  if (!sa_isset(&local, SA_ALL) || OptionOf(descriptor, SO_TYPE) != SOCK_STREAM || !is_ours_(local)) {
    return false;
  }
  epoll_event wanted{.events = EPOLLIN, .data = {.fd = descriptor}};
  if (::epoll_ctl(ready_, EPOLL_CTL_ADD, descriptor, &wanted) != 0) return true;
  watched_[static_cast<std::size_t>(descriptor)] = {};
  if (descriptor == spared_) spared_ = -1;
  if (!IsListening(descriptor)) {
    (void)::setsockopt(descriptor, SOL_SOCKET, SO_SNDBUF, &kMostUnread, sizeof(kMostUnread));
  }
  return true;
}

/// A peer that has never sent a message is less likely a telephone.
ConnectionGuard::Connection ConnectionGuard::Describe(int descriptor) const {
  const std::uint32_t silent_ms = InfoOf(descriptor).tcpi_last_data_recv;
  const bool speaks =
      watched_[static_cast<std::size_t>(descriptor)].heard != 0 || silent_ms < kFirstMessageMs;
  const int rank = descriptor == spared_ ? 0 : speaks ? 1 : 2;
  return {descriptor, AddressBy(::getpeername, descriptor), rank, silent_ms};
}

/// Within a rank, the connections that have been silent the longest are closed first.
void ConnectionGuard::CloseExcess(std::vector<Connection> connections) {
  std::ranges::sort(connections, {},
                    [](const Connection& one) { return std::pair(one.rank, one.silent_ms); });
  std::vector<Connection> kept;
  for (const Connection& one : connections) {
    const auto same = std::ranges::count_if(
        kept, [&one](const Connection& other) { return sa_cmp(&one.peer, &other.peer, SA_ADDR); });
    const bool room = kept.size() < kMostInAll && static_cast<std::size_t>(same) < kMostOfOnePeer;
    if (room) {
      kept.push_back(one);
    } else {
      CloseConnection(one.descriptor);
    }
  }
}

void ConnectionGuard::TakeReady() {
  std::array<epoll_event, 64> ready{};
  const int count = ::epoll_wait(ready_, ready.data(), static_cast<int>(ready.size()), 0);
  for (int i = 0; i < count; ++i) {
    const int descriptor = ready[static_cast<std::size_t>(i)].data.fd;
    if (IsListening(descriptor)) {
      if (!soon_.Running()) soon_.StartOnce(kSoon);
    } else if (GoesTooFar(descriptor)) {
      CloseConnection(descriptor);
    }
  }
}

bool ConnectionGuard::GoesTooFar(int descriptor) {
  const std::uint64_t taken = TakenFrom(descriptor);
  const std::uint64_t heard = watched_[static_cast<std::size_t>(descriptor)].heard;
  return taken > heard + kMostWithoutMessage || IsStuckTooLong(descriptor);
}

bool ConnectionGuard::IsStuckTooLong(int descriptor) {
  Watched& one = watched_[static_cast<std::size_t>(descriptor)];
  if (CanSend(descriptor)) {
    one.stuck.reset();
    return false;
  }
  if (!patience_.Running()) patience_.StartOnce(kPatience);
  if (one.stuck) return Clock::now() - *one.stuck >= kPatience;
  one.stuck = Clock::now();
  return std::ranges::count_if(watched_, [](const Watched& other) { return other.stuck.has_value(); }) >
         kMostStuck;
}

/// Ignored while answers wait in the library: bytes that arrive until they are sent count as bytes without a
/// message.
void ConnectionGuard::Heard(const sip_msg& message) {
  const int descriptor = DescriptorOf(message);
  if (descriptor < 0 || !Watch(descriptor)) return;
  tcp_conn* const connection = sip_msg_tcpconn(&message);
  tcp_conn_rxsz_set(connection, kPiece);
  if (tcp_conn_txqsz(connection) == 0) {
    watched_[static_cast<std::size_t>(descriptor)].heard = TakenFrom(descriptor);
  }
  if (!call_.empty() && View(message.callid) == call_) spared_ = descriptor;
}

void ConnectionGuard::Spare(const sip_msg& invite) {
  call_ = View(invite.callid);
  spared_ = DescriptorOf(invite);
}

void DescriptorReserve::Fill() try {
  while (held_.size() < kCount) held_.emplace_back("/dev/null", O_RDONLY);
} catch (const std::exception&) {
  // There are none left: a call may still get those that others release.
}

}  // namespace orven
