// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QThread>
#include <atomic>
#include <functional>
#include <memory>
#include <vector>

#include "platform/event_loop.h"
#include "platform/telephone_lines.h"

namespace orven {

/// Runs the tests of lines away from the user-interface thread, one that counts at a time.
/// User-interface thread.
class LineTestRun {
 public:
  /// Looks at `cancelled` at least a few times a second.
  using Work = std::function<LineTestResult(const std::atomic<bool>& cancelled)>;

  explicit LineTestRun(EventLoop& loop) : loop_(loop) {}
  LineTestRun(const LineTestRun&) = delete;
  LineTestRun& operator=(const LineTestRun&) = delete;

  /// Waits for the threads, which know that they are cancelled: up to two seconds.
  ~LineTestRun();

  /// Gives up the work under way and runs `work` on a thread; `done` follows on the user-interface
  /// thread unless Cancel comes first.
  void Start(Work work, TelephoneLines::TestDone done);

  /// Does not wait.
  void Cancel();

 private:
  struct Run {
    std::atomic<bool> cancelled = false;
    std::atomic<bool> finished = false;
    std::unique_ptr<QThread> thread;  ///< Qt's serial ports want one of Qt's
  };

  void Forget(bool finished_only);

  EventLoop& loop_;
  std::vector<std::shared_ptr<Run>> runs_;  ///< the latest one counts, the others are cancelled
  Lifeline lifeline_;
};

}  // namespace orven
