// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/line/modem/modem_line.h"

#include <QEventLoop>
#include <QThread>
#include <future>
#include <memory>
#include <optional>
#include <string>
#include <utility>

#include "adapters/desktop/qt_event_loop.h"
#include "adapters/line/driver/line_audio.h"
#include "adapters/line/modem/modem_agent.h"
#include "adapters/line/modem/serial_link.h"

namespace orven {
namespace {

/// The agent's own limit is shorter; this one matters only when its thread hangs.
constexpr std::chrono::milliseconds kLongestClose{1'800};

/// The line's driver: passes all operations to the modem's thread, which runs an event loop of Qt.
class ModemLine final : public LineDriver {
 public:
  ModemLine(ModemLineSettings settings, const Clock& clock) : settings_(std::move(settings)), clock_(clock) {}
  ~ModemLine() override { ModemLine::Close(); }

  std::optional<OpenFailure> Open(LineSink events) override;
  void Close() override;

  void Answer(CallNumber call, std::int32_t request) override {
    Post([call, request](ModemAgent& agent) { agent.Answer(call, request); });
  }
  void Drop(CallNumber call, std::int32_t request) override {
    Post([call, request](ModemAgent& agent) { agent.Drop(call, request); });
  }
  void MonitorDigits(CallNumber call, bool on) override {
    Post([call, on](ModemAgent& agent) { agent.MonitorDigits(call, on); });
  }

  AudioDevice& Audio() override { return audio_; }

 private:
  using Opened = std::promise<std::optional<LineTrouble>>;

  void Run(const LineSink& events, Opened& opened);
  void Stop();

  /// Runs `task` on the thread; drops it while the line is closed.
  template <class Task>
  void Post(Task task) {
    if (loop_ != nullptr) loop_->Post([this, task] { task(*agent_); });
  }

  const ModemLineSettings settings_;
  const Clock& clock_;
  LineAudio audio_;
  std::unique_ptr<QThread> thread_;  ///< while the line is open
  EventLoop* loop_ = nullptr;        ///< the thread's
  ModemAgent* agent_ = nullptr;      ///< modem's thread only
};

std::optional<OpenFailure> ModemLine::Open(LineSink events) {
  if (thread_) return OpenFailure{kTelephonyLineInUse};
  Opened opened;
  thread_.reset(QThread::create([this, &events, &opened] { Run(events, opened); }));
  thread_->start();
  const auto failure = opened.get_future().get();
  if (!failure) return std::nullopt;
  Stop();
  return OpenFailure{kTelephonyDeviceFailed, failure->log, failure->owner};
}

void ModemLine::Run(const LineSink& events, Opened& opened) {
  QtEventLoop loop;
  const auto link = MakeSerialLink();
  ModemAgent agent(settings_, {*link, loop, clock_, audio_, events});
  agent_ = &agent;
  loop_ = &loop;
  opened.set_value(agent.Start());
  QEventLoop().exec();
}

void ModemLine::Close() {
  if (!thread_) return;
  const auto finished = std::make_shared<std::promise<void>>();
  Post([finished](ModemAgent& agent) { agent.Shutdown([finished] { finished->set_value(); }); });
  (void)finished->get_future().wait_for(kLongestClose);
  Stop();
}

/// Ends the thread after the tasks posted so far.
void ModemLine::Stop() {
  loop_->Post([thread = thread_.get()] { thread->quit(); });
  thread_->wait();
  loop_ = nullptr;
  thread_.reset();
}

}  // namespace

std::unique_ptr<LineDriver> MakeModemLine(ModemLineSettings settings, const Clock& clock) {
  return std::make_unique<ModemLine>(std::move(settings), clock);
}

}  // namespace orven
