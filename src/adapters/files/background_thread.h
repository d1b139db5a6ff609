// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/worker.h"
#include "platform/event_loop.h"

namespace orven {

/// The background port on one worker thread.
class BackgroundThread final : public Background {
 public:
  /// `loop` outlives this object. The destructor waits up to 10 s for the requested work: a disk that hangs
  /// must not keep the program from ending.
  explicit BackgroundThread(EventLoop& loop);

  void Run(Work work, Done done) override;

 private:
  EventLoop& loop_;
  Lifeline lifeline_;
  Worker worker_;
};

}  // namespace orven
