// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/desktop/qt_event_loop.h"

#include <QMetaObject>
#include <QTimer>
#include <algorithm>
#include <iostream>
#include <utility>

namespace orven {
namespace {

using std::chrono::milliseconds;

class QtTimer final : public Timer {
 public:
  explicit QtTimer(EventLoop::Task tick) {
    timer_.setTimerType(Qt::PreciseTimer);
    QObject::connect(&timer_, &QTimer::timeout, &timer_, std::move(tick));
  }

  void Start(milliseconds interval) override { timer_.start(std::max(interval, milliseconds(1))); }
  void Stop() override { timer_.stop(); }
  bool Enabled() const override { return timer_.isActive(); }

 private:
  QTimer timer_;
};

}  // namespace

QtEventLoop::QtEventLoop(FaultHandler on_fault)
    : on_fault_(std::make_shared<FaultHandler>(std::move(on_fault))) {
  if (!*on_fault_) {
    *on_fault_ = [](const std::string& text) { std::cerr << "orven: a task failed: " << text << std::endl; };
  }
}

QtEventLoop::~QtEventLoop() = default;

void QtEventLoop::Post(Task task) {
  QMetaObject::invokeMethod(&context_, Guarded(std::move(task)), Qt::QueuedConnection);
}

void QtEventLoop::After(milliseconds delay, Task task) {
  QTimer::singleShot(std::max(delay, milliseconds(0)), Qt::PreciseTimer, &context_, Guarded(std::move(task)));
}

std::unique_ptr<Timer> QtEventLoop::MakeTimer(Task tick) {
  return std::make_unique<QtTimer>(Guarded(std::move(tick)));
}

EventLoop::Task QtEventLoop::Guarded(Task task) const {
  // The handler is shared because a task may destroy the loop.
  return [task = std::move(task), on_fault = on_fault_] {
    try {
      task();
    } catch (const std::exception& fault) {
      (*on_fault)(fault.what());
    } catch (...) {
      (*on_fault)("unknown exception");
    }
  };
}

}  // namespace orven
