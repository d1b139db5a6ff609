// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/line/sip/libre.h"

#include <sys/timerfd.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdint>
#include <system_error>

namespace orven {
namespace {

timespec Spec(std::chrono::milliseconds time) {
  const auto seconds = std::chrono::duration_cast<std::chrono::seconds>(time);
  const std::chrono::nanoseconds rest = time - seconds;
  return {static_cast<time_t>(seconds.count()), static_cast<long>(rest.count())};
}

}  // namespace

std::string ErrorText(int error) {
  return std::generic_category().message(error);
}

std::string AddressText(const sa& address) {
  std::array<char, 64> text{};
  re_snprintf(text.data(), text.size(), "%J", &address);
  return text.data();
}

std::string RandomName() {
  std::array<char, 24> text{};
  (void)re_snprintf(text.data(), text.size(), "%016llx", rand_u64());
  return text.data();
}

sa LocalAddressTowards(const sa& peer) {
  sa local{};
  sa_init(&local, sa_af(&peer));
  udp_sock* raw = nullptr;
  if (udp_listen(&raw, &local, nullptr, nullptr) != 0) return local;
  const LibrePtr<udp_sock> socket(raw);
  const int fd = udp_sock_fd(socket.get(), sa_af(&peer));
  sa found{};
  found.len = sizeof(found.u);
  if (::connect(fd, &peer.u.sa, peer.len) != 0 || ::getsockname(fd, &found.u.sa, &found.len) != 0) {
    return local;
  }
  sa_set_port(&found, 0);
  return found;
}

MonotonicTimer::MonotonicTimer(std::function<void()> callback)
    : callback_(std::move(callback)), fd_(timerfd_create(CLOCK_BOOTTIME, TFD_NONBLOCK | TFD_CLOEXEC)) {
  const int error = fd_ < 0 ? errno : fd_listen(fd_, FD_READ, &MonotonicTimer::Fired, this);
  if (error == 0) return;
  if (fd_ >= 0) ::close(fd_);
  throw std::system_error(error, std::generic_category(), "no timer for the telephone line");
}

MonotonicTimer::~MonotonicTimer() {
  fd_close(fd_);
  ::close(fd_);
}

void MonotonicTimer::StartOnce(std::chrono::milliseconds delay) {
  Arm(delay, std::chrono::milliseconds(0));
}

void MonotonicTimer::StartPeriodic(std::chrono::milliseconds interval) {
  Arm(interval, interval);
}

void MonotonicTimer::Arm(std::chrono::milliseconds first, std::chrono::milliseconds interval) {
  running_ = true;
  periodic_ = interval > std::chrono::milliseconds(0);
  itimerspec spec{};
  spec.it_value = Spec(std::max(first, std::chrono::milliseconds(1)));
  spec.it_interval = Spec(interval);
  (void)timerfd_settime(fd_, 0, &spec, nullptr);
}

void MonotonicTimer::Stop() {
  running_ = false;
  const itimerspec never{};
  (void)timerfd_settime(fd_, 0, &never, nullptr);
}

void MonotonicTimer::Fired(int /*flags*/, void* self) {
  auto& timer = *static_cast<MonotonicTimer*>(self);
  std::uint64_t expirations = 0;
  if (::read(timer.fd_, &expirations, sizeof(expirations)) != sizeof(expirations) || !timer.running_) return;
  if (!timer.periodic_) timer.running_ = false;
  // A copy, because the callback may destroy the timer and its own function with it.
  const std::function<void()> callback = timer.callback_;
  callback();
}

}  // namespace orven
