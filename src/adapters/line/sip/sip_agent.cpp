// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/line/sip/sip_agent.h"

#ifdef __GLIBC__
#include <malloc.h>
#endif

#include <algorithm>
#include <exception>
#include <utility>

namespace orven {
namespace {

/// A line must be closed within 2 s, whatever the network does.
constexpr std::chrono::milliseconds kLongestFarewell{1'500};

/// The library keeps each transaction for 32 s (RFC 3261, section 17), 8 KB per call. After this time without
/// a call all are freed.
constexpr std::chrono::seconds kTransactionsGone{34};

Words WrongSetting(const std::string& problem) {
  return Words("A setting of the line is wrong, %1: correct it in Options, Devices").Arg(problem);
}

}  // namespace

SipAgent::SipAgent(const SipLineSettings& settings, LineAudio& audio, LineSink events)
    : settings_(settings),
      audio_(audio),
      events_(std::move(events)),
      transports_(settings,
                  {[this](SipEndpoint& at, const sip_msg& request) { return TakeWithin(at, request); },
                   [this](SipEndpoint& at, const sip_msg& invite) { TakeInvite(at, invite); },
                   [this] { Finish(); }, [this](SipEndpoint& endpoint) { return Leave(endpoint); },
                   [this] {
                     if (!closing_) LookAtNetwork(NetworkChange::kNone);
                   }}),
      network_([this](NetworkChange change) { LookAtNetwork(change); }),
      close_timer_([this] { Finish(); }),
      tidy_timer_([this] { TidyMemory(); }) {}

SipAgent::~SipAgent() {
  done_ = nullptr;
  network_.Stop();
  if (call_ != nullptr) call_->End(false);
  call_.reset();
}

std::optional<OpenFailure> SipAgent::Start() {
  if (auto failure = transports_.Start()) return failure;
  std::vector<std::string> problems;
  for (const SipAccount& account : settings_.accounts) {
    news_.push_back({.account = account.address});
    problems.push_back(transports_.ProblemWith(account));
  }
  // One that cannot be used does not keep the others from working.
  if (!problems.empty() && std::ranges::none_of(problems, &std::string::empty))
    return OpenFailure{kTelephonyDeviceFailed, problems.front(), WrongSetting(problems.front())};
  for (std::size_t at = 0; at < problems.size(); ++at) {
    if (problems[at].empty()) AddRegistration(at);
  }
  for (Registration& one : registrations_) one.Start();
  for (std::size_t at = 0; at < problems.size(); ++at) {
    if (problems[at].empty()) continue;
    settings_.report("The account " + settings_.accounts[at].address + " cannot be used: " + problems[at]);
    TakeNews(at, {.state = RegistrationNews::State::Failed,
                  .reason = problems[at],
                  .trouble = WrongSetting(problems[at])});
  }
  network_.Start();
  TellTrouble();
  return std::nullopt;
}

void SipAgent::AddRegistration(std::size_t at) {
  const SipAccount& account = settings_.accounts[at];
  const auto towards = [this, &account](const ServerAddress& server) {
    SipEndpoint* const endpoint = transports_.Towards(account, server);
    return endpoint != nullptr ? &endpoint->Stack() : nullptr;
  };
  registrations_.emplace_back(
      settings_, account,
      Registration::Ports{towards, [this, &account] { return transports_.RefusalOf(account); },
                          [this, at](const RegistrationNews& news) { TakeNews(at, news); }});
}

/// The line is as well as the worst of its accounts.
void SipAgent::TakeNews(std::size_t account, const RegistrationNews& news) {
  // A try does not end the trouble, only its success does.
  const auto before = news_[account].trouble;
  news_[account] = news;
  news_[account].account = settings_.accounts[account].address;
  if (news.state == RegistrationNews::State::Trying && news.trouble.Empty()) news_[account].trouble = before;
  const auto rank = [](const RegistrationNews& one) {
    using State = RegistrationNews::State;
    return one.state == State::Failed ? 0 : one.state == State::Trying ? 1 : 2;
  };
  settings_.registration_news(*std::ranges::min_element(news_, {}, rank));
  TellTrouble();
}

Words SipAgent::AccountTrouble() const {
  const auto works = [](const RegistrationNews& one) { return one.trouble.Empty(); };
  const auto faulty = std::ranges::find_if_not(news_, works);
  if (faulty == news_.end()) return {};
  const auto working = std::ranges::count_if(news_, works);
  if (working == 0) return faulty->trouble;
  return Words("%1 (%2 of %3 accounts work)").Arg(faulty->trouble).Arg(working).Arg(std::ssize(news_));
}

void SipAgent::TellTrouble() {
  auto now = transports_.Trouble();
  if (now.Empty()) now = AccountTrouble();
  if (std::exchange(trouble_, now) != now) events_({.kind = LineEvent::Kind::Trouble, .trouble = now});
}

void SipAgent::LookAtNetwork(NetworkChange change) {
  if (transports_.Follow()) change = std::max(change, NetworkChange::kAddresses);
  TellTrouble();
  if (change == NetworkChange::kNone) return;
  transports_.NamesChanged();
  for (Registration& one : registrations_) one.NetworkChanged(change);
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
  for (Registration& one : registrations_) one.Leave(endpoint.Stack());
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
    const bool by_server = std::ranges::any_of(
        registrations_, [&invite](const Registration& one) { return one.IsServer(invite.src); });
    call_ports_.emplace(
        SipCallPorts{&at.Stack(), &at.Sessions(), settings_, audio_, events_, by_server, ContactOf(invite)});
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

/// Where the caller reaches us: through a router if `invite` came through one, else at our own address, for
/// which a user is enough.
std::string SipAgent::ContactOf(const sip_msg& invite) const {
  std::string best = registrations_.empty() ? "orven" : registrations_.front().User();
  for (const Registration& one : registrations_) {
    const auto contact = one.PublicContact(invite);
    if (!contact.empty()) best = contact;
    if (!contact.empty() && View(invite.uri.user) == one.User()) break;
  }
  return best;
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

void SipAgent::AudioBegun() {
  if (call_ != nullptr) call_->AudioBegun();
}

void SipAgent::Shutdown(std::function<void()> done) {
  closing_ = true;
  done_ = std::move(done);
  network_.Stop();
  if (call_ != nullptr) call_->End(false);
  for (Registration& one : registrations_) one.End();
  close_timer_.StartOnce(kLongestFarewell);
  transports_.Close();
}

void SipAgent::Finish() {
  close_timer_.Stop();
  if (done_) std::exchange(done_, nullptr)();
}

}  // namespace orven
