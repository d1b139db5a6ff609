// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/line/modem/serial/modem_thread.h"

#include <QThread>

#include "adapters/desktop/qt_event_loop.h"

namespace orven {
namespace {

class LoopThread final : public QThread {
 public:
  LoopThread(std::function<void(EventLoop&)> begin, std::function<void()> end)
      : begin_(std::move(begin)), end_(std::move(end)) {}

 private:
  void run() override {
    QtEventLoop loop;
    begin_(loop);
    exec();
    end_();
  }

  std::function<void(EventLoop&)> begin_;
  std::function<void()> end_;
};

}  // namespace

ModemThread::ModemThread() = default;

ModemThread::~ModemThread() {
  Stop();
}

void ModemThread::Start(std::function<void(EventLoop&)> begin, std::function<void()> end) {
  Stop();
  std::promise<EventLoop*> started;
  thread_ = std::make_unique<LoopThread>(
      [&started, begin = std::move(begin)](EventLoop& loop) {
        begin(loop);
        started.set_value(&loop);
      },
      std::move(end));
  thread_->start();
  loop_ = started.get_future().get();
}

void ModemThread::Post(EventLoop::Task task) {
  if (loop_ != nullptr) loop_->Post(std::move(task));
}

void ModemThread::Stop() {
  if (!thread_) return;
  Post([thread = thread_.get()] { thread->quit(); });
  thread_->wait();
  loop_ = nullptr;
  thread_.reset();
}

}  // namespace orven
