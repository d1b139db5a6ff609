// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/files/background_thread.h"

#include <condition_variable>
#include <deque>
#include <mutex>
#include <thread>
#include <utility>

namespace orven {
namespace {

using namespace std::chrono_literals;

constexpr auto kPatience = 10s;

}  // namespace

struct BackgroundThread::Queue {
  std::mutex mutex;
  std::condition_variable changed;
  std::deque<std::function<void()>> work;
  bool started = false;
  bool ending = false;
  bool ended = false;

  void Serve() {
    std::unique_lock lock(mutex);
    while (true) {
      changed.wait(lock, [this] { return ending || !work.empty(); });
      if (work.empty()) break;
      const auto next = std::move(work.front());
      work.pop_front();
      lock.unlock();
      next();
      lock.lock();
    }
    ended = true;
    changed.notify_all();
  }
};

BackgroundThread::BackgroundThread(EventLoop& loop) : loop_(loop), queue_(std::make_shared<Queue>()) {}

BackgroundThread::~BackgroundThread() {
  std::unique_lock lock(queue_->mutex);
  queue_->ending = true;
  queue_->changed.notify_all();
  if (queue_->started) queue_->changed.wait_for(lock, kPatience, [this] { return queue_->ended; });
  queue_->work.clear();
}

void BackgroundThread::Run(Work work, Done done) {
  // The loop may be gone when work that was left behind comes to its end: only the failure is kept
  // then, and nobody is told.
  auto failure = std::make_shared<std::exception_ptr>();
  auto tell = lifeline_.Bind([failure, done = std::move(done)] { done(*failure); });
  const std::lock_guard lock(queue_->mutex);
  queue_->work.push_back(
      [work = std::move(work), failure, tell = std::move(tell), &loop = loop_, queue = queue_.get()] {
        try {
          work();
        } catch (...) {
          *failure = std::current_exception();
        }
        const std::lock_guard alive(queue->mutex);
        if (!queue->ending) loop.Post(tell);
      });
  if (!std::exchange(queue_->started, true)) {
    std::thread([queue = queue_] { queue->Serve(); }).detach();
  }
  queue_->changed.notify_all();
}

}  // namespace orven
