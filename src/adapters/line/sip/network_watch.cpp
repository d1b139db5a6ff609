// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/line/sip/network_watch.h"

#include <linux/netlink.h>
#include <linux/rtnetlink.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <ctime>
#include <utility>

#include "adapters/line/sip/libre.h"

namespace orven {
namespace {

/// A network that comes up reports its link, its address and its routes one after the other.
constexpr std::chrono::milliseconds kSettling{300};

/// How soon a change is noticed if the kernel does not report it.
constexpr std::chrono::seconds kTick{5};

/// The two clocks are not read at the same moment.
constexpr std::chrono::seconds kShortestSleep{1};

/// Whether a message of the kernel is a change. Wireless events of a link are not.
bool IsChange(const nlmsghdr& message) {
  if (message.nlmsg_type != RTM_NEWLINK) return true;
  const auto* link = static_cast<const ifinfomsg*>(NLMSG_DATA(&message));
  auto left = IFLA_PAYLOAD(&message);
  for (const auto* fact = IFLA_RTA(link); RTA_OK(fact, left); fact = RTA_NEXT(fact, left)) {
    if (fact->rta_type == IFLA_WIRELESS) return false;
  }
  return true;
}

std::chrono::nanoseconds TimeOf(clockid_t clock) {
  timespec now{};
  (void)::clock_gettime(clock, &now);
  return std::chrono::seconds(now.tv_sec) + std::chrono::nanoseconds(now.tv_nsec);
}

int ListenToKernel() {
  const int fd = ::socket(AF_NETLINK, SOCK_RAW | SOCK_CLOEXEC | SOCK_NONBLOCK, NETLINK_ROUTE);
  if (fd < 0) return fd;
  sockaddr_nl groups{};
  groups.nl_family = AF_NETLINK;
  groups.nl_groups =
      RTMGRP_LINK | RTMGRP_IPV4_IFADDR | RTMGRP_IPV6_IFADDR | RTMGRP_IPV4_ROUTE | RTMGRP_IPV6_ROUTE;
  if (::bind(fd, reinterpret_cast<const sockaddr*>(&groups), sizeof(groups)) == 0) return fd;
  ::close(fd);
  return -1;
}

}  // namespace

NetworkWatch::NetworkWatch(std::function<void(NetworkChange)> look)
    : look_(std::move(look)), settle_([this] { look_(NetworkChange::kRoutes); }), tick_([this] {
        const bool renamed = NamesChanged();
        look_(WasSuspended() ? NetworkChange::kResumed
              : renamed      ? NetworkChange::kRoutes
                             : NetworkChange::kNone);
      }) {}

void NetworkWatch::Start() {
  (void)NamesChanged();
  (void)WasSuspended();
  tick_.StartPeriodic(kTick);
  kernel_ = ListenToKernel();
  if (kernel_ < 0) return;
  const auto readable = [](int, void* self) { static_cast<NetworkWatch*>(self)->TakeNews(); };
  (void)fd_listen(kernel_, FD_READ, readable, this);
}

void NetworkWatch::Stop() {
  settle_.Stop();
  tick_.Stop();
  if (kernel_ < 0) return;
  fd_close(kernel_);
  ::close(kernel_);
  kernel_ = -1;
}

void NetworkWatch::TakeNews() {
  alignas(nlmsghdr) std::array<char, 16'384> buffer{};
  const ssize_t size = ::recv(kernel_, buffer.data(), buffer.size(), 0);
  // An overflow of the kernel's queue counts as a change.
  bool change = size < 0 && errno == ENOBUFS;
  auto left = static_cast<unsigned>(size > 0 ? size : 0);
  for (auto* message = reinterpret_cast<const nlmsghdr*>(buffer.data()); NLMSG_OK(message, left);
       message = NLMSG_NEXT(message, left)) {
    change = change || IsChange(*message);
  }
  if (change && !settle_.Running()) settle_.StartOnce(kSettling);
}

/// Whether the computer was suspended since the last call: only one of the two clocks counts that time.
bool NetworkWatch::WasSuspended() {
  const auto suspended = TimeOf(CLOCK_BOOTTIME) - TimeOf(CLOCK_MONOTONIC);
  return suspended - std::exchange(suspended_, suspended) > kShortestSleep;
}

/// Whether they changed since the last call.
bool NetworkWatch::NamesChanged() {
  std::string now;
  for (const char* path : {"/etc/resolv.conf", "/etc/hosts", "/etc/nsswitch.conf"}) {
    struct stat file {};
    if (::stat(path, &file) != 0) file = {};
    now += std::to_string(file.st_ino) + ' ' + std::to_string(file.st_size) + ' ' +
           std::to_string(file.st_mtim.tv_sec) + '.' + std::to_string(file.st_mtim.tv_nsec) + '\n';
  }
  return std::exchange(names_, now) != now;
}

}  // namespace orven
