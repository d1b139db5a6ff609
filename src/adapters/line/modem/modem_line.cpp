// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/line/modem/modem_line.h"

#include <QThread>
#include <functional>
#include <future>
#include <memory>
#include <optional>
#include <utility>

#include "adapters/desktop/qt_event_loop.h"
#include "adapters/line/driver/line_audio.h"
#include "adapters/line/modem/modem_agent.h"
#include "adapters/line/modem/serial_link.h"
#include "platform/event_loop.h"

namespace orven {
namespace {

/// The thread of one open modem line, with an event loop of Qt.
class ModemThread {
 public:
  ModemThread();
  ModemThread(const ModemThread&) = delete;
  ModemThread& operator=(const ModemThread&) = delete;
  ~ModemThread();

  /// Starts the thread; `begin` runs on it first, with its loop, and `end` last.
  void Start(std::function<void(EventLoop&)> begin, std::function<void()> end);

  /// Runs `task` on the thread; drops it when the thread is not running. Any thread.
  void Post(EventLoop::Task task);

  /// Ends the thread after the tasks posted so far. Not on the thread itself. Idempotent.
  void Stop();

 private:
  std::unique_ptr<QThread> thread_;
  EventLoop* loop_ = nullptr;  ///< between Start and Stop
};

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

/// The agent's own limit is shorter; this one matters only when its thread hangs.
constexpr std::chrono::milliseconds kLongestClose{1'800};

/// The line's driver: passes all operations to the modem's thread.
class ModemLine final : public LineDriver {
 public:
  ModemLine(ModemLineSettings settings, const Clock& clock) : settings_(std::move(settings)), clock_(clock) {}
  ~ModemLine() override { ModemLine::Close(); }

  std::optional<OpenFailure> Open(LineSink events) override;
  void Close() override;
  void Answer(CallNumber call, std::int32_t request) override {
    thread_.Post([this, call, request] { agent_->Answer(call, request); });
  }
  void Drop(CallNumber call, std::int32_t request) override {
    thread_.Post([this, call, request] { agent_->Drop(call, request); });
  }
  void MonitorDigits(CallNumber call, bool on) override {
    thread_.Post([this, call, on] { agent_->MonitorDigits(call, on); });
  }
  AudioDevice& Audio() override { return audio_; }

 private:
  const ModemLineSettings settings_;
  const Clock& clock_;
  LineAudio audio_;
  std::unique_ptr<ModemLink> link_;    ///< modem's thread only
  std::unique_ptr<ModemAgent> agent_;  ///< modem's thread only
  bool open_ = false;
  ModemThread thread_;
};

std::optional<OpenFailure> ModemLine::Open(LineSink events) {
  if (open_) return OpenFailure{kTelephonyLineInUse, ""};
  std::optional<std::string> failure;
  thread_.Start(
      [this, &events, &failure](EventLoop& loop) {
        link_ = MakeSerialLink();
        agent_ =
            std::make_unique<ModemAgent>(settings_, ModemAgent::Ports{*link_, loop, clock_, audio_, events});
        failure = agent_->Start();
      },
      [this] {
        agent_.reset();
        link_.reset();
      });
  open_ = !failure;
  if (open_) return std::nullopt;
  thread_.Stop();
  return OpenFailure{kTelephonyDeviceFailed, *failure};
}

void ModemLine::Close() {
  if (!open_) return;
  open_ = false;
  const auto finished = std::make_shared<std::promise<void>>();
  thread_.Post([this, finished] { agent_->Shutdown([finished] { finished->set_value(); }); });
  (void)finished->get_future().wait_for(kLongestClose);
  thread_.Stop();
}

}  // namespace

std::unique_ptr<LineDriver> MakeModemLine(ModemLineSettings settings, const Clock& clock) {
  return std::make_unique<ModemLine>(std::move(settings), clock);
}

}  // namespace orven
