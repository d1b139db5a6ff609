// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/line/sip/sip_line.h"

#include <exception>
#include <future>

#include "adapters/line/service/line_audio.h"
#include "adapters/line/sip/sip_agent.h"
#include "adapters/line/sip/sip_thread.h"

namespace orven {
namespace {

/// Sound quality of the line in bits a second (G.711).
constexpr std::int32_t kMaxRate = 64'000;

constexpr std::chrono::seconds kLongestOpen{5};

/// The agent's own limit is shorter; this one counts only when the SIP thread is in trouble.
constexpr std::chrono::milliseconds kLongestClose{1'800};

/// The line as its owner sees it: hands everything over to the SIP thread.
class SipLine final : public LineDriver {
 public:
  explicit SipLine(const SipLineSettings& settings) : settings_(settings) {
    capabilities_.device_name = settings.name;
    capabilities_.max_rate = kMaxRate;
    capabilities_.caller_id = true;
    capabilities_.monitor_digits = true;
    capabilities_.interactive_voice = true;
    capabilities_.automated_voice = true;
    audio_.OnSourceReady([this] {
      thread_.Post([this] {
        if (agent_ != nullptr) agent_->SoundReady();
      });
    });
  }
  ~SipLine() override { SipLine::Close(); }

  const DeviceCapabilities& Capabilities() const override { return capabilities_; }
  std::int32_t Open(LineDriverEvents& events) override;
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
  /// Nothing to do: our own sound does not come back on a digital line.
  void SetGreetingPhase(CallNumber /*call*/, bool /*on*/) override {}
  AudioDevice& Audio() override { return audio_; }
  std::string LastError() const override { return error_; }

 private:
  std::optional<OpenFailure> StartAgent(LineDriverEvents& events);

  const SipLineSettings settings_;
  DeviceCapabilities capabilities_;
  LineAudio audio_;
  std::unique_ptr<SipAgent> agent_;  ///< SIP thread only
  std::string error_;
  bool open_ = false;
  SipThread thread_;
};

std::int32_t SipLine::Open(LineDriverEvents& events) {
  if (open_) return kTelephonyLineInUse;
  error_ = thread_.Start([this] { agent_.reset(); });
  if (!error_.empty()) return kTelephonyDeviceFailed;
  const auto started = std::make_shared<std::promise<std::optional<OpenFailure>>>();
  thread_.Post([this, &events, started] { started->set_value(StartAgent(events)); });
  auto outcome = started->get_future();
  const auto failure = outcome.wait_for(kLongestOpen) == std::future_status::ready
                           ? outcome.get()
                           : OpenFailure{kTelephonyDeviceFailed, "the SIP thread does not answer"};
  open_ = !failure;
  if (open_) return kTelephonyOk;
  error_ = failure->reason;
  thread_.Stop();
  return failure->result;
}

std::optional<OpenFailure> SipLine::StartAgent(LineDriverEvents& events) {
  std::optional<OpenFailure> failure;
  try {
    agent_ = std::make_unique<SipAgent>(settings_, audio_, events);
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
