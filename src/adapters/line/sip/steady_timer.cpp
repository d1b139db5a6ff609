// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/line/sip/steady_timer.h"

#include <sys/timerfd.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <system_error>

#include "adapters/line/sip/libre.h"

namespace orven {
namespace {

timespec Spec(std::chrono::milliseconds time) {
  const auto seconds = std::chrono::duration_cast<std::chrono::seconds>(time);
  const std::chrono::nanoseconds rest = time - seconds;
  return {static_cast<time_t>(seconds.count()), static_cast<long>(rest.count())};
}

}  // namespace

SteadyTimer::SteadyTimer(std::function<void()> callback)
    : callback_(std::move(callback)), fd_(timerfd_create(CLOCK_BOOTTIME, TFD_NONBLOCK | TFD_CLOEXEC)) {
  const int error = fd_ < 0 ? errno : fd_listen(fd_, FD_READ, &SteadyTimer::Fired, this);
  if (error == 0) return;
  if (fd_ >= 0) ::close(fd_);
  throw std::system_error(error, std::generic_category(), "no timer for the telephone line");
}

SteadyTimer::~SteadyTimer() {
  fd_close(fd_);
  ::close(fd_);
}

void SteadyTimer::StartOnce(std::chrono::milliseconds delay) {
  periodic_ = false;
  Arm(delay, std::chrono::milliseconds(0));
}

void SteadyTimer::StartPeriodic(std::chrono::milliseconds interval) {
  periodic_ = true;
  Arm(interval, interval);
}

void SteadyTimer::Arm(std::chrono::milliseconds first, std::chrono::milliseconds interval) {
  running_ = true;
  itimerspec spec{};
  spec.it_value = Spec(std::max(first, std::chrono::milliseconds(1)));
  spec.it_interval = Spec(interval);
  (void)timerfd_settime(fd_, 0, &spec, nullptr);
}

void SteadyTimer::Stop() {
  running_ = false;
  const itimerspec never{};
  (void)timerfd_settime(fd_, 0, &never, nullptr);
}

void SteadyTimer::Fired(int /*flags*/, void* self) {
  auto& timer = *static_cast<SteadyTimer*>(self);
  std::uint64_t expirations = 0;
  if (::read(timer.fd_, &expirations, sizeof(expirations)) != sizeof(expirations) || !timer.running_) return;
  if (!timer.periodic_) timer.running_ = false;
  // A copy, because the callback may destroy the timer and its own function with it.
  const std::function<void()> callback = timer.callback_;
  callback();
}

}  // namespace orven
