// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/line/sip/sip_agent.h"

#ifdef __GLIBC__
#include <malloc.h>
#endif

#include <array>
#include <exception>
#include <utility>

#include "adapters/line/sip/sip_requests.h"

namespace orven {
namespace {

constexpr const char* kSoftware = "ORVEN";
constexpr std::uint32_t kBuckets = 32;

/// A line must be closed within 2 s whatever the network does.
constexpr std::chrono::milliseconds kLongestFarewell{1'500};

SipAgent& Self(void* agent) {
  return *static_cast<SipAgent*>(agent);
}

/// The library keeps each transaction for 32 s (RFC 3261, section 17), 8 KB a call. When none has come for
/// longer than that, they are gone.
constexpr std::chrono::seconds kTransactionsGone{34};

/// Resolves the names of account servers; without name servers only addresses work.
LibrePtr<dnsc> NameResolver() {
  std::array<sa, 4> servers{};
  auto count = static_cast<std::uint32_t>(servers.size());
  if (dns_srv_get(nullptr, 0, servers.data(), &count) != 0) count = 0;
  dnsc* client = nullptr;
  (void)dnsc_alloc(&client, nullptr, servers.data(), count);
  return LibrePtr<dnsc>(client);
}

}  // namespace

SipAgent::SipAgent(const SipLineSettings& settings, LineAudio& audio, LineDriverEvents& events)
    : settings_(settings),
      audio_(audio),
      events_(events),
      transports_(settings),
      close_timer_([this] { Finish(); }),
      tidy_timer_([this] { TidyMemory(); }) {}

SipAgent::~SipAgent() {
  done_ = nullptr;
  if (call_ != nullptr) call_->HangUp();
  call_.reset();
  registration_.reset();
  sipsess_close_all(sessions_.get());
  transports_.Stop();
  sip_close(stack_.get(), true);
  sessions_.reset();
}

std::optional<OpenFailure> SipAgent::Start() {
  if (const std::string problem = AccountProblem(settings_); !problem.empty()) {
    return OpenFailure{kTelephonyDeviceFailed, problem};
  }
  if (auto failure = Listen()) return failure;
  surroundings_.emplace(
      CallSurroundings{stack_.get(), sessions_.get(), settings_, audio_, events_, ContactUser(settings_)});
  if (!settings_.account.empty()) {
    registration_ =
        std::make_unique<Registration>(*stack_, settings_, [this] { return transports_.ServerRefusal(); });
    registration_->Start();
  }
  return std::nullopt;
}

std::optional<OpenFailure> SipAgent::Listen() {
  sip* stack = nullptr;
  int error = sip_alloc(
      &stack, NameResolver().get(), kBuckets, kBuckets, kBuckets, kSoftware,
      [](void* self) { Self(self).Finish(); }, this);
  stack_.reset(stack);
  if (error == 0) {
    if (auto failure = transports_.Start(*stack)) return failure;
  }
  // The order matters: what is unsound is out before the sessions see it, what they leave comes last.
  if (error == 0) {
    error = sip_listen(
        nullptr, stack, true,
        [](const sip_msg* request, void* self) {
          return TakeProbe(*request) || !IsSoundRequest(*Self(self).stack_, *request);
        },
        this);
  }
  sipsess_sock* sessions = nullptr;
  if (error == 0) {
    error = sipsess_listen(
        &sessions, stack, kBuckets, [](const sip_msg* invite, void* self) { Self(self).TakeInvite(*invite); },
        this);
  }
  sessions_.reset(sessions);
  if (error == 0) {
    error = sip_listen(
        nullptr, stack, true,
        [](const sip_msg* request, void* self) {
          AnswerOtherRequest(*Self(self).stack_, *request);
          return true;
        },
        this);
  }
  if (error == 0)
    error = sip_listen(
        nullptr, stack, false, [](const sip_msg*, void*) { return true; }, this);
  if (error == 0) return std::nullopt;
  return OpenFailure{kTelephonyDeviceFailed, "SIP cannot begin: " + ErrorWords(error)};
}

void SipAgent::TakeInvite(const sip_msg& invite) {
  tidy_timer_.StartOnce(kTransactionsGone);
  if (closing_ || (call_ != nullptr && !call_->Gone())) {
    (void)sip_reply(stack_.get(), &invite, 486, "Busy Here");
    return;
  }
  // No exception may reach the library, which is C. Without memory or handles there is no call.
  try {
    call_.reset();
    reserve_.Release();
    call_ = SipCall::Accept(*surroundings_, calls_ + 1, invite);
    if (call_ != nullptr) ++calls_;
  } catch (const std::exception&) {
    (void)sip_reply(stack_.get(), &invite, 500, "Server Internal Error");
  }
  if (call_ == nullptr) reserve_.Fill();
}

/// After many calls in a row: the allocator keeps what lies between pieces that are in use.
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
  events_.RequestDone(request, kTelephonyNoCall);
}

void SipAgent::Drop(CallNumber call, std::int32_t request) {
  if (SipCall* found = Find(call)) return found->Drop(request);
  events_.RequestDone(request, kTelephonyOk);
}

void SipAgent::MonitorDigits(CallNumber call, bool on) {
  if (SipCall* found = Find(call)) found->MonitorDigits(on);
}

void SipAgent::SoundReady() {
  if (call_ != nullptr) call_->SoundReady();
}

void SipAgent::Shutdown(std::function<void()> done) {
  closing_ = true;
  done_ = std::move(done);
  if (call_ != nullptr) call_->HangUp();
  if (registration_ != nullptr) registration_->End();
  close_timer_.StartOnce(kLongestFarewell);
  // Calls Finish when the last session has ended, which may be at once.
  sip_close(stack_.get(), false);
}

void SipAgent::Finish() {
  close_timer_.Stop();
  if (done_) std::exchange(done_, nullptr)();
}

}  // namespace orven
