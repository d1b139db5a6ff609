// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/line/sip/sip_line.h"

#include <exception>
#include <future>
#include <string>
#include <utility>

#include "adapters/line/driver/line_audio.h"
#include "adapters/line/sip/sip_agent.h"
#include "adapters/line/sip/sip_thread.h"

namespace orven {
namespace {

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
