// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/line/sip/sip_agent.h"

#ifdef __GLIBC__
#include <malloc.h>
#endif

#include <exception>
#include <utility>

namespace orven {
namespace {

/// A line must be closed within 2 s, whatever the network does.
constexpr std::chrono::milliseconds kLongestFarewell{1'500};

/// The library keeps each transaction for 32 s (RFC 3261, section 17), 8 KB per call. After this time without
/// a call all are freed.
constexpr std::chrono::seconds kTransactionsGone{34};

}  // namespace

SipAgent::SipAgent(const SipLineSettings& settings, LineAudio& audio, LineSink events)
    : settings_(settings),
      audio_(audio),
      events_(std::move(events)),
      transports_(settings,
                  {[this](SipEndpoint& at, const sip_msg& request) { return TakeWithin(at, request); },
                   [this](SipEndpoint& at, const sip_msg& invite) { TakeInvite(at, invite); },
                   [this] { Finish(); }, [this](SipEndpoint& endpoint) { return Leave(endpoint); }}),
      network_([this](bool changed) { LookAtNetwork(changed); }),
      close_timer_([this] { Finish(); }),
      tidy_timer_([this] { TidyMemory(); }) {}

SipAgent::~SipAgent() {
  done_ = nullptr;
  network_.Stop();
  if (call_ != nullptr) call_->End(false);
  call_.reset();
}

std::optional<OpenFailure> SipAgent::Start() {
  if (const std::string problem = AccountProblem(settings_); !problem.empty()) {
    return OpenFailure{kTelephonyDeviceFailed, problem};
  }
  if (auto failure = transports_.Start()) return failure;
  if (!settings_.account.empty()) {
    const auto towards = [this](const sa& server) {
      SipEndpoint* const endpoint = transports_.Towards(server);
      return endpoint != nullptr ? &endpoint->Stack() : nullptr;
    };
    registration_ =
        std::make_unique<Registration>(settings_, towards, [this] { return transports_.ServerRefusal(); });
    registration_->Start();
  }
  network_.Start();
  return std::nullopt;
}

void SipAgent::LookAtNetwork(bool changed) {
  const bool moved = transports_.Follow();
  if (!moved && !changed) return;
  transports_.ReadNameServers();
  if (registration_ != nullptr) registration_->NetworkChanged(moved);
}

/// A call whose address was removed may continue: its audio may have another route, and the address may
/// return.
bool SipAgent::Leave(SipEndpoint& endpoint) {
  if (call_ports_ && call_ports_->stack == &endpoint.Stack()) {
    if (call_ != nullptr && !call_->Gone()) return false;
    call_.reset();
    reserve_.Fill();
    call_ports_.reset();
  }
  if (registration_ != nullptr) registration_->Leave(endpoint.Stack());
  return true;
}

bool SipAgent::TakeWithin(SipEndpoint& at, const sip_msg& request) {
  return call_ != nullptr && call_ports_->stack == &at.Stack() && call_->Take(request);
}

void SipAgent::TakeInvite(SipEndpoint& at, const sip_msg& invite) {
  tidy_timer_.StartOnce(kTransactionsGone);
  if (call_ != nullptr && call_->Ending())
    call_->End(true);  // its last audio must not cost a caller the line
  if (closing_ || (call_ != nullptr && !call_->Gone())) {
    (void)sip_reply(&at.Stack(), &invite, 486, "Busy Here");
    return;
  }
  // No exception may reach the C library. Without memory or descriptors the call is refused.
  try {
    call_.reset();
    reserve_.Release();
    const auto contact = registration_ != nullptr ? registration_->PublicContact(invite) : "";
    call_ports_.emplace(SipCallPorts{&at.Stack(), &at.Sessions(), settings_, audio_, events_,
                                     registration_ != nullptr && registration_->IsServer(invite.src),
                                     contact.empty() ? ContactUser(settings_) : contact});
    call_ = SipCall::Accept(*call_ports_, calls_ + 1, invite);
    if (call_ != nullptr) {
      ++calls_;
      transports_.Spare(invite);
    }
  } catch (const std::exception&) {
    (void)sip_reply(&at.Stack(), &invite, 500, "Server Internal Error");
  }
  if (call_ == nullptr) reserve_.Fill();
}

/// Returns memory to the system after many calls, which leave it fragmented.
void SipAgent::TidyMemory() {
  if (call_ != nullptr && !call_->Gone()) return tidy_timer_.StartOnce(kTransactionsGone);
#ifdef __GLIBC__
  (void)malloc_trim(0);
#endif
}

SipCall* SipAgent::Find(CallNumber number) const {
  return call_ != nullptr && call_->Number() == number && !call_->Gone() ? call_.get() : nullptr;
}

void SipAgent::Answer(CallNumber call, std::int32_t request) {
  if (SipCall* found = Find(call)) return found->Answer(request);
  events_({.kind = LineEvent::Kind::Proc, .number = request, .result = kTelephonyNoCall});
}

void SipAgent::Drop(CallNumber call, std::int32_t request) {
  if (SipCall* found = Find(call)) return found->Drop(request);
  events_({.kind = LineEvent::Kind::Proc, .number = request});
}

void SipAgent::MonitorDigits(CallNumber call, bool on) {
  if (SipCall* found = Find(call)) found->MonitorDigits(on);
}

void SipAgent::SourceReady() {
  if (call_ != nullptr) call_->SourceReady();
}

void SipAgent::Shutdown(std::function<void()> done) {
  closing_ = true;
  done_ = std::move(done);
  network_.Stop();
  if (call_ != nullptr) call_->End(false);
  if (registration_ != nullptr) registration_->End();
  close_timer_.StartOnce(kLongestFarewell);
  transports_.Close();
}

void SipAgent::Finish() {
  close_timer_.Stop();
  if (done_) std::exchange(done_, nullptr)();
}

}  // namespace orven
