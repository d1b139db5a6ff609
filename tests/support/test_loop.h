// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <chrono>
#include <deque>
#include <mutex>
#include <stdexcept>
#include <thread>
#include <utility>

#include "platform/event_loop.h"

namespace orven::testing {

/// Longer than anything here takes on the slowest machine under a sanitizer.
inline constexpr std::chrono::seconds kLimit{30};

/// Waits until `condition` holds; false when it never does.
template <class Condition>
bool Eventually(Condition condition) {
  const auto deadline = std::chrono::steady_clock::now() + kLimit;
  while (!condition()) {
    if (std::chrono::steady_clock::now() > deadline) return false;
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
  }
  return true;
}

/// An event loop whose tasks run when the test says so. The wave control uses no timers.
class TestLoop : public EventLoop {
 public:
  void Post(Task task) override {
    const std::lock_guard lock(mutex_);
    tasks_.push_back(std::move(task));
  }
  void After(std::chrono::milliseconds, Task) override { throw std::logic_error("no timers here"); }
  std::unique_ptr<Timer> MakeTimer(Task) override { throw std::logic_error("no timers here"); }

  /// Runs what has been posted, and what that posts.
  void Run() {
    for (std::unique_lock lock(mutex_); !tasks_.empty(); lock.lock()) {
      const Task task = std::exchange(tasks_.front(), nullptr);
      tasks_.pop_front();
      lock.unlock();
      task();
    }
  }

 private:
  std::mutex mutex_;
  std::deque<Task> tasks_;
};

}  // namespace orven::testing
