// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <functional>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "adapters/line/sip/libre.h"

namespace orven {

/// A SIP thread: runs the SIP library's event loop and the tasks posted to it.
class SipThread {
 public:
  using Task = std::function<void()>;

  SipThread() = default;
  SipThread(const SipThread&) = delete;
  SipThread& operator=(const SipThread&) = delete;
  ~SipThread() { Stop(); }

  /// Starts the thread and waits until tasks can be posted. Empty on success, else the reason. `at_end` runs
  /// last on the thread, even if the loop failed.
  std::string Start(Task at_end);

  /// Runs `task` on the thread, after all tasks posted before it, never inside Post. Any thread. The task is
  /// dropped when the thread does not run.
  void Post(Task task);

  /// Ends the loop after the tasks posted so far and joins the thread. Not on the thread itself.
  /// Idempotent.
  void Stop();

 private:
  std::string Prepare();
  void Loop(const Task& at_end);
  void RunTasks();

  std::thread thread_;
  std::mutex mutex_;
  std::vector<Task> tasks_;  ///< guarded by mutex_
  mqueue* wake_ = nullptr;   ///< guarded by mutex_; nullptr when the loop does not run
  bool woken_ = false;       ///< guarded by mutex_
};

}  // namespace orven
