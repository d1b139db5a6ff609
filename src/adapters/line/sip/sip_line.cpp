// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/line/sip/sip_line.h"

#include <pthread.h>
#include <sched.h>

#include <exception>
#include <functional>
#include <future>
#include <mutex>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "adapters/line/driver/line_audio.h"
#include "adapters/line/sip/connection_guard.h"
#include "adapters/line/sip/libre.h"
#include "adapters/line/sip/sip_agent.h"

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

/// The thread of one open SIP line: runs the SIP library's event loop and the tasks posted to it.
class SipThread {
 public:
  using Task = std::function<void()>;

  SipThread() = default;
  SipThread(const SipThread&) = delete;
  SipThread& operator=(const SipThread&) = delete;
  ~SipThread() { Stop(); }

  /// Starts the thread and waits until tasks can be posted. Empty on success, else the reason. `at_end` runs
  /// last on the thread, even if the loop failed.
  std::string Start(Task at_end);

  /// Runs `task` on the thread, after all tasks posted before it, never inside Post. Any thread. The task is
  /// dropped when the thread does not run.
  void Post(Task task);

  /// Ends the loop after the tasks posted so far and joins the thread. Not on the thread itself.
  /// Idempotent.
  void Stop();

 private:
  std::string Prepare();
  void Loop(const Task& at_end);
  void RunTasks();

  std::thread thread_;
  std::mutex mutex_;
  std::vector<Task> tasks_;  ///< guarded by mutex_
  mqueue* wake_ = nullptr;   ///< guarded by mutex_; nullptr when the loop does not run
  bool woken_ = false;       ///< guarded by mutex_
};

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

constexpr std::chrono::seconds kLongestOpen{5};

/// The agent's own limit is shorter; this one is for a SIP thread that hangs.
constexpr std::chrono::milliseconds kLongestClose{1'800};

/// The line's driver: posts every operation to the SIP thread.
class SipLine final : public LineDriver {
 public:
  explicit SipLine(const SipLineSettings& settings) : settings_(settings) {
    audio_.OnSourceReady([this] { Tell(&SipAgent::SourceReady); });
    audio_.OnStart([this] { Tell(&SipAgent::AudioBegun); });
  }
  ~SipLine() override { SipLine::Close(); }

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
  std::optional<OpenFailure> StartAgent(LineSink events);
  void Tell(void (SipAgent::*news)()) {
    thread_.Post([this, news] {
      if (agent_ != nullptr) ((*agent_).*news)();
    });
  }

  const SipLineSettings settings_;
  LineAudio audio_;
  std::unique_ptr<SipAgent> agent_;  ///< SIP thread only
  bool open_ = false;
  SipThread thread_;
};

std::optional<OpenFailure> SipLine::Open(LineSink events) {
  if (open_) return OpenFailure{kTelephonyLineInUse, ""};
  if (const auto reason = thread_.Start([this] { agent_.reset(); }); !reason.empty())
    return OpenFailure{kTelephonyDeviceFailed, reason};
  const auto started = std::make_shared<std::promise<std::optional<OpenFailure>>>();
  thread_.Post([this, events = std::move(events), started] { started->set_value(StartAgent(events)); });
  auto outcome = started->get_future();
  auto failure = outcome.wait_for(kLongestOpen) == std::future_status::ready
                     ? outcome.get()
                     : OpenFailure{kTelephonyDeviceFailed, "the SIP thread does not answer"};
  open_ = !failure;
  if (!open_) thread_.Stop();
  return failure;
}

std::optional<OpenFailure> SipLine::StartAgent(LineSink events) {
  std::optional<OpenFailure> failure;
  try {
    agent_ = std::make_unique<SipAgent>(settings_, audio_, std::move(events));
    failure = agent_->Start();
  } catch (const std::exception& error) {
    failure = OpenFailure{kTelephonyDeviceFailed, error.what()};
  }
  if (failure) agent_.reset();
  return failure;
}

void SipLine::Close() {
  if (!open_) return;
  open_ = false;
  const auto finished = std::make_shared<std::promise<void>>();
  thread_.Post([this, finished] { agent_->Shutdown([finished] { finished->set_value(); }); });
  (void)finished->get_future().wait_for(kLongestClose);
  thread_.Stop();
}

}  // namespace

std::unique_ptr<LineDriver> MakeSipLine(const SipLineSettings& settings) {
  return std::make_unique<SipLine>(settings);
}

}  // namespace orven
