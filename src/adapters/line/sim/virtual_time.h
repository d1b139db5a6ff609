// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <queue>
#include <vector>

#include "platform/clock.h"
#include "platform/event_loop.h"

namespace orven {

/// A clock and event loop whose time passes only in RunFor and RunUntil: a simulated hour takes as long as
/// its events. The wall clock begins at `start`; the time zone is UTC, dates are month/day/year, times have
/// 24 hours and seconds. Single-threaded: posting from other threads is not supported.
class VirtualTime : public EventLoop, public Clock {
 public:
  explicit VirtualTime(WallTime start) : start_(start) {}

  /// Lets `duration` pass and runs everything that is due meanwhile, in order.
  void RunFor(std::chrono::milliseconds duration);

  /// Runs until `done` or until `limit` has passed. True when `done`.
  bool RunUntil(const std::function<bool()>& done, std::chrono::milliseconds limit);

  /// Sets the wall clock forward, or back by a negative duration; Uptime is not affected.
  void TurnClock(std::chrono::milliseconds by) { start_ += by; }

  void Post(Task task) override { After(std::chrono::milliseconds(0), std::move(task)); }
  void After(std::chrono::milliseconds delay, Task task) override;
  std::unique_ptr<Timer> MakeTimer(Task tick) override;

  std::chrono::milliseconds Uptime() const override { return now_; }
  WallTime Now() const override { return start_ + now_; }
  std::string DateText(WallTime at) const override;
  std::string TimeText(WallTime at) const override;
  std::chrono::year_month_day LocalDay(WallTime at) const override;
  WallTime Midnight(std::chrono::year_month_day day) const override;

 private:
  class VirtualTimer;

  /// A task, or a timer that reuses its job: most events of a simulated hour are ticks, so they must not
  /// allocate.
  struct Job {
    Task task;
    std::chrono::milliseconds interval{0};
    std::uint64_t start = 0;  ///< counts a timer's starts and stops: entries of earlier starts are void
    bool repeats = false;
  };
  struct Due {
    std::chrono::milliseconds at;
    std::uint64_t order;  ///< tasks that are due at the same time run in the order of their requests
    std::uint64_t start;
    std::shared_ptr<Job> job;
    bool operator<(const Due& other) const { return at != other.at ? at > other.at : order > other.order; }
  };

  void Queue(std::chrono::milliseconds delay, std::shared_ptr<Job> job);
  void RunNext();

  WallTime start_;
  std::chrono::milliseconds now_{0};
  std::uint64_t order_ = 0;
  std::priority_queue<Due> due_;
};

}  // namespace orven
