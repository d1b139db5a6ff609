// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <chrono>
#include <exception>
#include <functional>
#include <memory>

namespace orven {

/// A repeating timer of the user-interface thread. A new one is disabled; destroying it disables it.
/// A late tick is delivered once; missed ticks are dropped.
class Timer {
 public:
  virtual ~Timer() = default;

  /// Enables the timer: the first tick comes after one interval (1 ms or more), counted from now.
  virtual void Start(std::chrono::milliseconds interval) = 0;
  virtual void Stop() = 0;
  virtual bool Enabled() const = 0;
};

/// The one queue of tasks for the engine; they run one at a time.
class EventLoop {
 public:
  using Task = std::function<void()>;

  virtual ~EventLoop() = default;

  /// Runs `task` on the user-interface thread, after all tasks posted before it and never inside the
  /// call. Any thread may post. Tasks still queued when the loop is destroyed are dropped.
  virtual void Post(Task task) = 0;

  /// Runs `task` once on the user-interface thread after `delay` (0 or more). User-interface thread only.
  virtual void After(std::chrono::milliseconds delay, Task task) = 0;

  /// A disabled timer that calls `tick`. User-interface thread only; must not outlive the loop.
  virtual std::unique_ptr<Timer> MakeTimer(Task tick) = 0;
};

/// Drops posted tasks once the object that posted them is destroyed: keep a Lifeline as a member
/// and post `lifeline.Bind(task)`. Bound tasks run, and the Lifeline is destroyed, on the user-interface
/// thread; Bind may be called on any thread while the Lifeline exists.
class Lifeline {
 public:
  Lifeline() = default;
  Lifeline(const Lifeline&) = delete;
  Lifeline& operator=(const Lifeline&) = delete;

  EventLoop::Task Bind(EventLoop::Task task) const {
    return [alive = std::weak_ptr<int>(alive_), task = std::move(task)] {
      if (!alive.expired()) task();
    };
  }

 private:
  std::shared_ptr<int> alive_ = std::make_shared<int>(0);
};

/// Runs work that may take long (a copy to a slow disk) on another thread, one piece after the other.
class Background {
 public:
  using Work = std::function<void()>;
  /// Receives what the work threw, or nullptr.
  using Done = std::function<void(std::exception_ptr failure)>;

  virtual ~Background() = default;

  /// Runs `work` on another thread, then `done` on the user-interface thread. User-interface thread.
  virtual void Run(Work work, Done done) = 0;
};

}  // namespace orven
