// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <chrono>
#include <condition_variable>
#include <deque>
#include <mutex>
#include <stdexcept>

#include "platform/event_loop.h"

namespace orven::test {

/// An event loop without timers, run by the test.
class WaitingLoop : public EventLoop {
 public:
  void Post(Task task) override {
    const std::lock_guard lock(mutex_);
    tasks_.push_back(std::move(task));
    changed_.notify_all();
  }
  void After(std::chrono::milliseconds /*delay*/, Task /*task*/) override { throw std::logic_error("After"); }
  std::unique_ptr<Timer> MakeTimer(Task /*tick*/) override { throw std::logic_error("MakeTimer"); }

  /// Runs tasks until `condition` holds. False when it does not in time.
  template <class Condition>
  bool RunUntil(Condition condition, std::chrono::milliseconds limit = std::chrono::seconds(20)) {
    const auto end = std::chrono::steady_clock::now() + limit;
    while (!condition()) {
      if (std::chrono::steady_clock::now() > end) return false;
      RunNext();
    }
    return true;
  }

 private:
  void RunNext() {
    Task task;
    {
      std::unique_lock lock(mutex_);
      changed_.wait_for(lock, std::chrono::milliseconds(20), [this] { return !tasks_.empty(); });
      if (tasks_.empty()) return;
      task = std::move(tasks_.front());
      tasks_.pop_front();
    }
    task();
  }

  std::mutex mutex_;
  std::condition_variable changed_;
  std::deque<Task> tasks_;
};

}  // namespace orven::test
