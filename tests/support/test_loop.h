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

/// Waits until `condition` holds. Returns false after 30 seconds, which is enough for every test on the
/// slowest machine with a sanitizer.
bool Eventually(auto condition) {
  const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(30);
  while (!condition()) {
    if (std::chrono::steady_clock::now() > deadline) return false;
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
  }
  return true;
}

/// An event loop without timers. Any thread may post. The tasks run when the test calls Run.
class TestLoop : public EventLoop {
 public:
  void Post(Task task) override {
    const std::lock_guard lock(mutex_);
    tasks_.push_back(std::move(task));
  }
  void After(std::chrono::milliseconds, Task) override { throw std::logic_error("no timers here"); }
  std::unique_ptr<Timer> MakeTimer(Task) override { throw std::logic_error("no timers here"); }

  /// Runs all posted tasks, including those that they post.
  void Run() {
    for (std::unique_lock lock(mutex_); !tasks_.empty(); lock.lock()) {
      const Task task = std::exchange(tasks_.front(), nullptr);
      tasks_.pop_front();
      lock.unlock();
      task();
    }
  }

  /// Runs tasks until `condition` holds. Returns false on a timeout.
  bool RunUntil(auto condition) {
    return Eventually([&] {
      Run();
      return condition();
    });
  }

 private:
  std::mutex mutex_;
  std::deque<Task> tasks_;
};

}  // namespace orven::testing
