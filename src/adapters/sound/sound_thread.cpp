// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/sound/sound_thread.h"

#include <unistd.h>

#include <QDeadlineTimer>
#include <QThread>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <iostream>
#include <utility>

#if defined(__SANITIZE_ADDRESS__)
#include <sanitizer/lsan_interface.h>
#endif

namespace orven {
namespace {

using namespace std::chrono_literals;

constexpr auto kEndLimit = 1s;

/// The global destructors of Qt 6.4's sound library are not safe: they destroy the connection to the server
/// while a thread may be reading from it (a crash in about 2 of 100 exits during a play), and they wait for a
/// thread that was left behind, or abort because it holds a lock. The program's own objects are destroyed by
/// then, so the process ends here, before them.
void EndBeforeGlobals(int status, void* /*unused*/) {
  std::cout.flush();
  std::fflush(nullptr);
#if defined(__SANITIZE_ADDRESS__)
  __lsan_do_leak_check();  // otherwise it would run after them
#endif
  _exit(status);
}

}  // namespace

class SoundThread::Thread : public QThread {
 public:
  explicit Thread(std::function<void()> at_end) : at_end_(std::move(at_end)) {}

 private:
  void run() override {
    exec();
    at_end_();
  }

  std::function<void()> at_end_;
};

SoundThread::SoundThread(std::function<void()> at_end)
    : thread_(std::make_unique<Thread>(std::move(at_end))), context_(std::make_unique<QObject>()) {
  thread_->setObjectName("sound");
  context_->moveToThread(thread_.get());
  thread_->start();
}

SoundThread::~SoundThread() {
  if (!thread_) return;
  on_exit(EndBeforeGlobals, nullptr);
  Post([thread = thread_.get()] { thread->quit(); });
  if (!thread_->wait(QDeadlineTimer(kEndLimit))) Leave();
}

void SoundThread::Abandon(std::unique_ptr<SoundThread> thread) {
  on_exit(EndBeforeGlobals, nullptr);
  thread->Leave();
}

/// Deleting these under the running thread would crash the program, so they leak on purpose.
void SoundThread::Leave() {
  static_cast<void>(context_.release());
  static_cast<void>(thread_.release());
}

void SoundThread::Post(std::function<void()> task) {
  QMetaObject::invokeMethod(context_.get(), std::move(task), Qt::QueuedConnection);
}

}  // namespace orven
