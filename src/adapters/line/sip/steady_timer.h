// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <chrono>
#include <functional>

namespace orven {

/// A timer of the SIP thread on the clock that nobody sets, and that counts a suspended computer's sleep. The
/// library's own timers follow the wall clock: when that is put back they stand still for as long, which must
/// not stop a call's sound. Made, used and destroyed on the SIP thread; the callback may destroy the timer.
class SteadyTimer {
 public:
  explicit SteadyTimer(std::function<void()> callback);
  SteadyTimer(const SteadyTimer&) = delete;
  SteadyTimer& operator=(const SteadyTimer&) = delete;
  ~SteadyTimer();

  /// Calls back once after `delay` (1 ms or more); a timer already running starts anew.
  void StartOnce(std::chrono::milliseconds delay);

  /// Calls back every `interval` counted from now, so that delays do not add up. Calls that a stall
  /// made late are merged into one.
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
