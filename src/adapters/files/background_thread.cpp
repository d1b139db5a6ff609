// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/files/background_thread.h"

#include <memory>
#include <utility>

#include "base/runtime_error.h"

namespace orven {

using namespace std::chrono_literals;

BackgroundThread::BackgroundThread(EventLoop& loop) : loop_(loop), worker_(Worker::AtStop::Finish, 10s) {}

void BackgroundThread::Run(Work work, Done done) {
  auto failure = std::make_shared<std::exception_ptr>();
  auto tell = lifeline_.Bind([failure, done = std::move(done)] { done(*failure); });
  const bool posted =
      worker_.Post([work = std::move(work), failure, tell, &loop = loop_, report = worker_.Reports()] {
        try {
          work();
        } catch (...) {
          *failure = std::current_exception();
        }
        report([&] { loop.Post(tell); });
      });
  if (posted) return;
  *failure = std::make_exception_ptr(RuntimeError(ErrorNumber::OutOfMemory, "no thread can be started"));
  loop_.Post(tell);
}

}  // namespace orven
