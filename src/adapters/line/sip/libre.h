// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// The SIP library's headers. Without these three definitions they do not compile, or make `bool` a macro.
#ifndef HAVE_INTTYPES_H
#define HAVE_INTTYPES_H 1
#endif
#ifndef HAVE_STDBOOL_H
#define HAVE_STDBOOL_H 1
#endif
#ifndef HAVE_INET6
#define HAVE_INET6 1
#endif

#include <re/re.h>

#include <chrono>
#include <functional>
#include <memory>
#include <new>
#include <string>
#include <string_view>

namespace orven {

struct LibreRelease {
  void operator()(void* object) const { mem_deref(object); }
};

/// Owns one reference to an object of the library. Such objects are made, used and released on the SIP
/// thread.
template <typename T>
using LibrePtr = std::unique_ptr<T, LibreRelease>;

/// The object that `make` returns through its first argument. Throws std::bad_alloc when there is none.
template <typename T, typename... Types, typename... Values>
LibrePtr<T> Made(int (*make)(T**, Types...), Values... values) {
  T* made = nullptr;
  if (make(&made, values...) != 0) throw std::bad_alloc();
  return LibrePtr<T>(made);
}

inline std::string_view View(const pl& text) {
  return {text.p != nullptr ? text.p : "", text.l};
}

/// The system's text for an errno value.
std::string ErrorText(int error);

/// "192.0.2.1:5060", "[2001:db8::1]:5060".
std::string AddressText(const sa& address);

/// 16 hexadecimal digits.
std::string RandomName();

/// This machine's address from which datagrams to `peer` would leave, with port 0. Nothing is sent. An unset
/// address when there is no route to `peer`.
sa LocalAddressTowards(const sa& peer);

/// A timer of the SIP thread on the monotonic clock that also counts the time a computer is suspended
/// (CLOCK_BOOTTIME). The library's own timers follow the wall clock: when it is set back they stop for as
/// long, and a call's audio must not stop. Made, used and destroyed on the SIP thread; the callback may
/// destroy it.
class MonotonicTimer {
 public:
  explicit MonotonicTimer(std::function<void()> callback);
  MonotonicTimer(const MonotonicTimer&) = delete;
  MonotonicTimer& operator=(const MonotonicTimer&) = delete;
  ~MonotonicTimer();

  /// Calls back once after `delay` (1 ms or more); restarts a running timer.
  void StartOnce(std::chrono::milliseconds delay);

  /// Calls back every `interval`, counted from now, so that delays do not add up. After a stall the missed
  /// calls become one.
  void StartPeriodic(std::chrono::milliseconds interval);

  void Stop();
  bool Running() const { return running_; }

 private:
  void Arm(std::chrono::milliseconds first, std::chrono::milliseconds interval);
  static void Fired(int flags, void* self);

  std::function<void()> callback_;
  int fd_ = -1;
  bool running_ = false;
  bool periodic_ = false;
};

}  // namespace orven
