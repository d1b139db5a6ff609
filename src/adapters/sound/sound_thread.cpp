// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/sound/sound_thread.h"

#include <QDeadlineTimer>
#include <chrono>

namespace orven {
namespace {

using namespace std::chrono_literals;

constexpr auto kEndLimit = 1s;

}  // namespace

SoundThread::SoundThread() : thread_(std::make_unique<QThread>()), context_(std::make_unique<QObject>()) {
  thread_->setObjectName("sound");
  context_->moveToThread(thread_.get());
  thread_->start();
}

SoundThread::~SoundThread() {
  Post([thread = thread_.get()] { thread->quit(); });
  if (thread_->wait(QDeadlineTimer(kEndLimit))) return;
  // Deleted under the running thread, they would bring the program down; so they leak on purpose.
  static_cast<void>(context_.release());
  static_cast<void>(thread_.release());
}

void SoundThread::Post(std::function<void()> task) {
  QMetaObject::invokeMethod(context_.get(), std::move(task), Qt::QueuedConnection);
}

}  // namespace orven
