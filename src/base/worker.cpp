// SPDX-License-Identifier: GPL-3.0-or-later
#include "base/worker.h"

#include <condition_variable>
#include <csignal>
#include <deque>
#include <mutex>
#include <system_error>
#include <utility>

namespace orven {
namespace {

/// A new thread takes over the mask of the one that starts it.
class SignalsBlocked {
 public:
  SignalsBlocked() {
    sigset_t all;
    ::sigfillset(&all);
    ::pthread_sigmask(SIG_BLOCK, &all, &before_);
  }
  ~SignalsBlocked() { ::pthread_sigmask(SIG_SETMASK, &before_, nullptr); }
  SignalsBlocked(const SignalsBlocked&) = delete;
  SignalsBlocked& operator=(const SignalsBlocked&) = delete;

 private:
  sigset_t before_{};
};

}  // namespace

struct Worker::State {
  AtStop at_stop = AtStop::Finish;
  std::mutex mutex;
  std::condition_variable changed;
  std::deque<Task> tasks;
  bool stopping = false;
  bool ended = false;

  void Serve() {
    std::unique_lock lock(mutex);
    while (true) {
      changed.wait(lock, [this] { return stopping || !tasks.empty(); });
      if (tasks.empty()) break;
      {
        const Task task = std::move(tasks.front());
        tasks.pop_front();
        lock.unlock();
        task();
      }
      lock.lock();
    }
    ended = true;
    changed.notify_all();
  }
};

Worker::Worker(AtStop at_stop, std::chrono::milliseconds patience)
    : patience_(patience), state_(std::make_shared<State>()) {
  state_->at_stop = at_stop;
}

bool Worker::Post(Task task) {
  const std::lock_guard lock(state_->mutex);
  if (state_->stopping || (!thread_.joinable() && !Start())) return false;
  state_->tasks.push_back(std::move(task));
  state_->changed.notify_all();
  return true;
}

bool Worker::Start() try {
  const SignalsBlocked blocked;
  thread_ = std::thread([state = state_] { state->Serve(); });
  return true;
} catch (const std::system_error&) {
  return false;
}

void Worker::Stop() {
  std::deque<Task> dropped;  // destroyed without the lock, because their destructors may run anything
  std::unique_lock lock(state_->mutex);
  state_->stopping = true;
  if (state_->at_stop == AtStop::Drop) dropped.swap(state_->tasks);
  state_->changed.notify_all();
  if (!thread_.joinable()) return;
  const auto ended = [this] { return state_->ended; };
  if (patience_ == kForever) {
    state_->changed.wait(lock, ended);
  } else {
    state_->changed.wait_for(lock, patience_, ended);
  }
  if (!state_->ended) dropped.swap(state_->tasks);
  const bool hangs = !state_->ended;
  lock.unlock();
  hangs ? thread_.detach() : thread_.join();
}

void Worker::Reporter::operator()(const Task& report) const {
  const std::lock_guard lock(state_->mutex);
  if (!state_->stopping) report();
}

}  // namespace orven
