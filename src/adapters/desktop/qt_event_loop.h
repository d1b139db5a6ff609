// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QObject>
#include <functional>
#include <memory>
#include <string>

#include "platform/event_loop.h"

namespace orven {

/// Qt's event loop of the thread that constructs it (the user-interface thread, where a QCoreApplication
/// runs). Tasks posted before the application's exec() wait for it.
class QtEventLoop final : public EventLoop {
 public:
  /// Called with the exception's text when a task or a tick has thrown. The loop continues.
  using FaultHandler = std::function<void(const std::string&)>;

  /// Without a handler faults are written to standard error.
  explicit QtEventLoop(FaultHandler on_fault = {});
  ~QtEventLoop() override;
  QtEventLoop(const QtEventLoop&) = delete;
  QtEventLoop& operator=(const QtEventLoop&) = delete;

  void Post(Task task) override;
  void After(std::chrono::milliseconds delay, Task task) override;
  std::unique_ptr<Timer> MakeTimer(Task tick) override;

 private:
  /// Wraps `task` so that no exception reaches Qt, which would end the process.
  Task Guarded(Task task) const;

  std::shared_ptr<FaultHandler> on_fault_;
  QObject context_;  // receives every task; tasks still queued are dropped with it
};

}  // namespace orven
