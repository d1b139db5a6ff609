// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <functional>
#include <future>
#include <memory>

#include "platform/event_loop.h"

class QThread;

namespace orven {

/// The thread of one open modem line, with an event loop of Qt.
class ModemThread {
 public:
  ModemThread();
  ModemThread(const ModemThread&) = delete;
  ModemThread& operator=(const ModemThread&) = delete;
  ~ModemThread();

  /// Starts the thread; `begin` runs on it first, with its loop, and `end` last.
  void Start(std::function<void(EventLoop&)> begin, std::function<void()> end);

  /// Runs `task` on the thread; dropped when it does not run. Any thread.
  void Post(EventLoop::Task task);

  /// Ends it after what has been posted so far. Not on the thread itself. Idempotent.
  void Stop();

 private:
  std::unique_ptr<QThread> thread_;
  EventLoop* loop_ = nullptr;  ///< between Start and Stop
};

}  // namespace orven
