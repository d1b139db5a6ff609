// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <memory>

#include "platform/background.h"
#include "platform/event_loop.h"

namespace orven {

/// The background port on one thread, which starts with the first piece of work.
class BackgroundThread final : public Background {
 public:
  /// `loop` outlives this object.
  explicit BackgroundThread(EventLoop& loop);

  /// Waits for the work that was asked for, though only kPatience: a disk that hangs must not keep the
  /// program from ending. Then the thread is left behind and ends with the process.
  ~BackgroundThread() override;
  BackgroundThread(const BackgroundThread&) = delete;
  BackgroundThread& operator=(const BackgroundThread&) = delete;

  void Run(Work work, Done done) override;

 private:
  struct Queue;

  EventLoop& loop_;
  std::shared_ptr<Queue> queue_;  ///< with the thread
  Lifeline lifeline_;
};

}  // namespace orven
