// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/line/sip/sip_thread.h"

#include <pthread.h>
#include <sched.h>

#include <future>
#include <utility>

#include "adapters/line/sip/connection_guard.h"

// Not included by the library's main header. It requires a name and a level for debug messages, which we do
// not use.
#define DEBUG_MODULE "orven"
#define DEBUG_LEVEL 0
#include <re/re_dbg.h>

namespace orven {
namespace {

/// Under load an ordinary thread wakes up to 100 ms late, and the caller hears it. The system may refuse a
/// real-time priority; then the thread keeps the ordinary one.
void RaisePriority() {
  sched_param parameters{};
  parameters.sched_priority = sched_get_priority_min(SCHED_RR);
  (void)pthread_setschedparam(pthread_self(), SCHED_RR, &parameters);
}

int InitialiseLibraryOnce() {
  // The library would print a line for every malformed message.
  static const int error = (dbg_init(DBG_EMERG, DBG_NONE), libre_init());
  return error;
}

}  // namespace

std::string SipThread::Start(Task at_end) {
  std::promise<std::string> prepared;
  std::future<std::string> outcome = prepared.get_future();
  thread_ = std::thread([this, &prepared, at_end = std::move(at_end)] {
    const std::string reason = Prepare();
    prepared.set_value(reason);
    if (reason.empty()) Loop(at_end);
    re_thread_close();
  });
  std::string reason = outcome.get();
  if (!reason.empty()) thread_.join();
  return reason;
}

std::string SipThread::Prepare() {
  RaisePriority();
  int error = InitialiseLibraryOnce();
  if (error == 0) error = re_thread_init();
  if (error == 0) error = fd_setsize(kMostDescriptors);
  mqueue* queue = nullptr;
  const auto wake = [](int, void*, void* self) { static_cast<SipThread*>(self)->RunTasks(); };
  if (error == 0) error = mqueue_alloc(&queue, wake, this);
  const std::lock_guard lock(mutex_);
  wake_ = queue;
  return error == 0 ? std::string() : "the SIP thread cannot start: " + ErrorText(error);
}

void SipThread::Loop(const Task& at_end) {
  (void)re_main(nullptr);
  mqueue* queue = nullptr;
  {
    const std::lock_guard lock(mutex_);
    std::swap(queue, wake_);
    woken_ = false;
    tasks_.clear();
  }
  at_end();
  mem_deref(queue);
}

void SipThread::Post(Task task) {
  const std::lock_guard lock(mutex_);
  if (wake_ == nullptr) return;
  tasks_.push_back(std::move(task));
  if (!woken_) woken_ = mqueue_push(wake_, 0, nullptr) == 0;
}

void SipThread::RunTasks() {
  std::vector<Task> tasks;
  {
    const std::lock_guard lock(mutex_);
    tasks.swap(tasks_);
    woken_ = false;
  }
  for (const Task& task : tasks) task();
}

void SipThread::Stop() {
  if (!thread_.joinable()) return;
  Post([] { re_cancel(); });
  thread_.join();
}

}  // namespace orven
