// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <thread>

namespace orven {

/// A thread that runs tasks one after the other, in the order they were posted. It starts with the first task
/// and blocks all signals: the main thread handles them.
class Worker {
  struct State;

 public:
  using Task = std::function<void()>;  ///< must not throw, and owns what it uses

  /// What Stop does with tasks that have not started.
  enum class AtStop { Finish, Drop };

  static constexpr std::chrono::milliseconds kForever = std::chrono::milliseconds::max();

  /// Stop waits for the thread for `patience` at most; a thread that hangs longer (in a disk, a name server)
  /// is left behind and ends with the process.
  explicit Worker(AtStop at_stop, std::chrono::milliseconds patience = kForever);
  ~Worker() { Stop(); }
  Worker(const Worker&) = delete;
  Worker& operator=(const Worker&) = delete;

  /// Any thread. False when the task is dropped: after Stop, or because no thread can be started.
  bool Post(Task task);

  /// Ends the thread. Not on the thread itself. Idempotent.
  void Stop();

  /// Lets a task report to the worker's owner while that still exists: the report runs on the calling thread,
  /// unless Stop has been called, and Stop waits for it. It must be short. A copy may outlive the worker.
  class Reporter {
   public:
    explicit Reporter(std::shared_ptr<State> state) : state_(std::move(state)) {}
    void operator()(const Task& report) const;

   private:
    std::shared_ptr<State> state_;
  };
  Reporter Reports() const { return Reporter(state_); }

 private:
  bool Start();

  std::chrono::milliseconds patience_;
  std::shared_ptr<State> state_;  ///< shared with a thread that is left behind
  std::thread thread_;
};

}  // namespace orven
