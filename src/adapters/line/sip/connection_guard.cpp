// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/line/sip/connection_guard.h"

#include <linux/tcp.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/epoll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <utility>

namespace orven {
namespace {

/// A line has 512 descriptors. So many connections from one address and from all leave enough of them for
/// the account's server, a call and whatever else is opened.
constexpr std::size_t kMostOfOnePeer = 32;
constexpr std::size_t kMostInAll = 128;

/// A message has 64 KB at most: more without one is none.
constexpr std::uint64_t kMostWithoutMessage = 128 * 1024;

/// What the system holds for a peer before we take it for one that does not read. Our answers have 1 KB.
constexpr int kMostUnread = 64 * 1024;

/// An accepted connection is found so long after it was announced, and at the latest.
constexpr std::chrono::milliseconds kSoon{10};
constexpr std::chrono::seconds kTick{10};

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

template <typename Ask>
sa AddressBy(Ask ask, int descriptor) {
  sa address{};
  address.len = sizeof(address.u);
  return ask(descriptor, &address.u.sa, &address.len) == 0 ? address : sa{};
}

/// The library notices that at once, and gives free what it keeps for the connection.
void CloseConnection(int descriptor) {
  const linger at_once{1, 0};
  (void)::setsockopt(descriptor, SOL_SOCKET, SO_LINGER, &at_once, sizeof(at_once));
  (void)::shutdown(descriptor, SHUT_RDWR);
}

}  // namespace

ConnectionGuard::ConnectionGuard(std::function<bool(const sa&)> is_ours)
    : is_ours_(std::move(is_ours)), soon_([this] { Look(); }), tick_([this] { Look(); }) {}

void ConnectionGuard::Start() {
  ready_ = ::epoll_create1(EPOLL_CLOEXEC);
  const auto take = [](int, void* self) { static_cast<ConnectionGuard*>(self)->TakeReady(); };
  if (ready_ >= 0) (void)fd_listen(ready_, FD_READ, take, this);
  tick_.StartPeriodic(kTick);
  Look();
}

void ConnectionGuard::Stop() {
  soon_.Stop();
  tick_.Stop();
  if (ready_ < 0) return;
  fd_close(ready_);
  ::close(ready_);
  ready_ = -1;
}

void ConnectionGuard::Look() {
  std::vector<Connection> connections;
  for (int descriptor = 0; descriptor < kMostDescriptors; ++descriptor) {
    const sa local = AddressBy(::getsockname, descriptor);
    if (!sa_isset(&local, SA_ALL) || OptionOf(descriptor, SO_TYPE) != SOCK_STREAM || !is_ours_(local))
      continue;
    epoll_event wanted{.events = EPOLLIN, .data = {.fd = descriptor}};
    const bool is_new = ::epoll_ctl(ready_, EPOLL_CTL_ADD, descriptor, &wanted) == 0;
    if (IsListening(descriptor)) continue;
    if (is_new) {
      heard_[static_cast<std::size_t>(descriptor)] = 0;
      (void)::setsockopt(descriptor, SOL_SOCKET, SO_SNDBUF, &kMostUnread, sizeof(kMostUnread));
    }
    connections.push_back(
        {descriptor, AddressBy(::getpeername, descriptor), InfoOf(descriptor).tcpi_last_data_recv});
  }
  CloseExcess(std::move(connections));
}

/// Those that have been silent the longest go first.
void ConnectionGuard::CloseExcess(std::vector<Connection> connections) {
  std::ranges::sort(connections, {}, &Connection::silent_ms);
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

bool ConnectionGuard::GoesTooFar(int descriptor) const {
  pollfd state{descriptor, POLLOUT, 0};
  const bool reads = ::poll(&state, 1, 0) == 1 && (state.revents & POLLOUT) != 0;
  const std::uint64_t received = InfoOf(descriptor).tcpi_bytes_received;
  return !reads || received > heard_[static_cast<std::size_t>(descriptor)] + kMostWithoutMessage;
}

void ConnectionGuard::Heard(const sip_msg& message) {
  const tcp_conn* const connection = sip_msg_tcpconn(&message);
  const int descriptor = connection != nullptr ? tcp_conn_fd(connection) : -1;
  if (descriptor < 0 || descriptor >= kMostDescriptors) return;
  heard_[static_cast<std::size_t>(descriptor)] = InfoOf(descriptor).tcpi_bytes_received;
}

}  // namespace orven
