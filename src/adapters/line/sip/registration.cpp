// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/line/sip/registration.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <utility>

#include "adapters/line/sip/connection_guard.h"
#include "adapters/line/sip/register_answer.h"

namespace orven {
namespace {

using std::chrono::milliseconds;
using std::chrono::seconds;

/// How many times in a row a server may ask for a longer lifetime.
constexpr int kMostTooBrief = 3;

/// The part of a registration's lifetime after which it is refreshed: early enough for one failed try.
constexpr int kRefreshPercent = 80;

/// The longest pause that a server can ask for.
constexpr seconds kLongestPause = std::chrono::hours(24);

/// The longest random delay of a retry.
constexpr seconds kLongestSpread(60);

/// The name for the request. Which transport a proxy uses is its own affair.
std::string RegistrarUri(const SipAccount& account, const SipAddress& address, const std::string& transport) {
  const std::string port = address.port != 0 ? ":" + std::to_string(address.port) : "";
  return "sip:" + HostInUri(address.host) + port + (account.proxy.empty() ? ";transport=" + transport : "");
}

std::string ContactUri(const std::string& user, const sa& address, sip_transp transport) {
  return "sip:" + user + '@' + AddressText(address) + sip_transp_param(transport);
}

/// Without the brackets and the port that an address has in a URI.
std::string HostText(const sa& address) {
  std::array<char, 64> text{};
  (void)re_snprintf(text.data(), text.size(), "%j", &address);
  return text.data();
}

}  // namespace

Registration::Registration(const SipLineSettings& settings, const SipAccount& account, Ports ports)
    : settings_(settings),
      account_(account),
      address_(AddressOf(account).value_or(SipAddress{})),
      user_("sip:" + address_.user + '@' + HostInUri(address_.host)),
      ports_(std::move(ports)),
      trouble_(account_, settings_.listen),
      call_id_(RandomName()),
      instance_(InstanceOf(account, settings.installation)),
      login_(account.auth_user.empty() ? address_.user : account.auth_user, account.password),
      path_(user_, {settings.timers.keep_alive, settings.timers.server_patience}, [this] { PathBroke(); }),
      timer_([this] { Start(); }),
      patience_([this] { GiveUpServer(); }),
      life_(settings.timers.registration_life) {}

Registration::~Registration() {
  mem_deref(request_);
}

void Registration::Start() {
  // Not as soon as it works: a server that closes each connection must not be pressed.
  if (registered_) retry_ = {};
  if (!registered_) ports_.news({});
  moved_ = false;
  started_ = std::chrono::steady_clock::now();
  lookup_.Find(ServerOf(account_), [this](std::vector<ServerAddress> servers) {
    timer_.Stop();
    Prefer(std::move(servers));
    Ask(life_);
  });
}

/// The server with which we are registered comes first if it is still listed; without a result the known
/// servers stay. Those without a route, often all of one family, are left out while others have one: they
/// would only shorten the patience with these and hide why they fail.
void Registration::Prefer(std::vector<ServerAddress> servers) {
  if (servers.empty()) servers = servers_;
  const auto no_route = [this](const ServerAddress& one) { return ports_.towards(one) == nullptr; };
  if (!std::ranges::all_of(servers, no_route)) std::erase_if(servers, no_route);
  if (registered_) {
    const auto same = std::ranges::find(servers, servers_[server_]);
    if (same != servers.end()) std::rotate(servers.begin(), same, same + 1);
  }
  servers_ = std::move(servers);
  server_ = 0;
}

void Registration::NetworkChanged(NetworkChange change) {
  // Whatever the connection went through while the computer slept is not known: it is closed, and PathBroke
  // registers over a new one.
  if (change == NetworkChange::kResumed && path_.Drop()) return;
  const bool other_way = !servers_.empty() && ports_.towards(servers_[server_]) != stack_;
  if (change == NetworkChange::kRoutes && !other_way) {
    // A registration that works is left alone, a pending request will be answered, and a refusal would be
    // repeated. Routes may change all the time, so the pause is not cut short each time.
    if (registered_ || refused_ || request_ != nullptr) return;
    const auto rest = started_ + settings_.timers.registration_rest - std::chrono::steady_clock::now();
    return timer_.StartOnce(std::max(milliseconds(0), std::chrono::ceil<milliseconds>(rest)));
  }
  Again();
}

/// Registers at once, as if nothing had been tried before.
void Registration::Again() {
  timer_.Stop();
  CancelRequest();
  login_.Reset();  // an unconfirmed login attempt does not count against the password
  retry_ = {};
  Start();
}

void Registration::CancelRequest() {
  patience_.Stop();
  request_ = static_cast<struct sip_request*>(mem_deref(request_));
}

/// Calls came over this path: without it the registration is useless.
void Registration::PathBroke() {
  if (!std::exchange(registered_, false)) return;
  if (std::chrono::steady_clock::now() - started_ >= settings_.timers.registration_rest) return Again();
  CancelRequest();
  if (NextServer()) return Ask(life_);
  RetryLater(trouble_.ConnectionBroke(), 0, 0);
}

void Registration::Leave(const sip& stack) {
  if (stack_ != &stack) return;
  path_.Leave();
  CancelRequest();
  stack_ = nullptr;
}

void Registration::Ask(seconds life) {
  int error = Send(life);
  while (error != 0 && NextServer()) error = Send(life);
  if (error != 0) RetryLater(Unreachable(error), 0, error);
}

LineTrouble Registration::Unreachable(int error) const {
  const auto& transport = servers_.empty() ? account_.transport : servers_[server_].transport;
  return trouble_.Unreachable(transport, error, ports_.refusal());
}

/// False after the last one of the list.
bool Registration::NextServer() {
  if (server_ + 1 >= servers_.size()) return false;
  ++server_;
  moved_ = false;  // it may see us elsewhere
  login_.Reset();  // what one server asks is nothing to the next
  return true;
}

/// The last one has as long as a transaction lasts, but is not known to work.
void Registration::GiveUpServer() {
  if (server_ + 1 >= servers_.size()) return ports_.news({.trouble = trouble_.Silent()});
  CancelRequest();
  if (NextServer()) Ask(asked_);
}

void Registration::End() {
  timer_.Stop();
  lookup_.GiveUp();
  path_.Leave();
  CancelRequest();
  if (registered_) (void)Send(seconds(0));
  patience_.Stop();
  registered_ = false;
}

int Registration::Send(seconds life) {
  CancelRequest();  // a short lifetime may end before the answer to an earlier one
  asked_ = life;
  if (servers_.empty()) return ENOENT;
  const ServerAddress& server = servers_[server_];
  stack_ = ports_.towards(server);
  if (stack_ == nullptr) return ENETUNREACH;
  patience_.StartOnce(settings_.timers.server_patience);
  const auto contact = [](sip_transp transport, const sa* source, const sa*, mbuf* request, void* self) {
    return static_cast<Registration*>(self)->WriteContact(transport, *source, *request);
  };
  const auto response = [](int error, const sip_msg* message, void* self) {
    static_cast<Registration*>(self)->TakeResponse(error, message);
  };
  const std::string registrar = RegistrarUri(account_, address_, server.transport);
  const std::string proxy = account_.proxy.empty() ? "" : "Route: <sip:" + account_.proxy + ";lr>\r\n";
  // The request names the server as the account does, and is sent to the address that was found.
  const std::string address = HostText(server.address), transport = ";transport=" + server.transport;
  uri route{};
  pl_set_str(&route.scheme, "sip");
  pl_set_str(&route.host, address.c_str());
  pl_set_str(&route.params, transport.c_str());
  route.port = sa_port(&server.address);
  const ImpatientConnection connection;
  return sip_requestf(&request_, stack_, true, "REGISTER", registrar.c_str(), &route, nullptr, contact,
                      response, this,
                      "%sTo: <%s>\r\nFrom: <%s>;tag=%s\r\nCall-ID: %s\r\nCSeq: %u REGISTER\r\n"
                      "%sSupported: outbound, path\r\nUser-Agent: ORVEN\r\nContent-Length: 0\r\n\r\n",
                      proxy.c_str(), user_.c_str(), user_.c_str(), call_id_.c_str(), call_id_.c_str(),
                      ++sequence_, login_.Headers("REGISTER", registrar).c_str());
}

int Registration::WriteContact(sip_transp transport, const sa& source, mbuf& request) {
  if (settings_.register_nothing) return 0;
  if (!sa_cmp(&source, &own_, SA_ALL)) seen_ = {};
  own_ = source;
  const sa& here = sa_isset(&seen_, SA_ALL) ? seen_ : own_;
  const bool leaving = asked_ == seconds(0) && !bound_.empty();
  contact_ = leaving ? bound_ : ContactUri(address_.user, here, transport);
  // Calls to the old address would get lost.
  const std::string old =
      bound_.empty() || bound_ == contact_ ? "" : "Contact: <" + bound_ + ">;expires=0\r\n";
  // One flow, by which a server with RFC 5626 sends us calls whatever the address is.
  return mbuf_printf(&request, "Contact: <%s>;expires=%u;+sip.instance=\"<%s>\";reg-id=1\r\n%s",
                     contact_.c_str(), static_cast<unsigned>(asked_.count()), instance_.c_str(), old.c_str());
}

bool Registration::IsServer(const sa& source) const {
  return std::ranges::any_of(
      servers_, [&source](const ServerAddress& one) { return sa_cmp(&one.address, &source, SA_ADDR); });
}

std::string Registration::PublicContact(const sip_msg& invite) const {
  if (!sa_isset(&seen_, SA_ALL) || !IsServer(invite.src)) return {};
  return ContactUri(address_.user, seen_, invite.tp);
}

void Registration::TakeResponse(int error, const sip_msg* response) {
  if (error == 0 && response->scode < 200) return;
  patience_.Stop();
  const bool no_service = error != 0 || response->scode == 503 || response->scode == 408;
  if (no_service && asked_ == seconds(0)) return;
  // Another server of the list may work (RFC 3263, section 4.3).
  if (no_service && NextServer()) return Ask(asked_);
  if (error != 0) return RetryLater(Unreachable(error), 0, error);
  if (const auto seen = SeenAddress(*response, own_)) seen_ = *seen;
  if (response->scode == 401 || response->scode == 407) return TakeChallenge(*response);
  login_.Accepted();
  if (response->scode < 300) return Registered(*response);
  if (response->scode == 423) return TakeTooBrief(*response);
  // The password was right and the server still refuses: an early retry is useless.
  const bool barred = response->scode == 403;
  TakeRefusal(*response, "", barred ? settings_.timers.registration_retry_longest : milliseconds(0));
}

void Registration::TakeChallenge(const sip_msg& response) {
  switch (login_.Take(response)) {
    case DigestLogin::Verdict::kAnswer: return Ask(asked_);
    // A wrong password is not repeated often, because some servers then block the sender.
    case DigestLogin::Verdict::kRefused:
      return TakeRefusal(response, "", settings_.timers.registration_retry_longest);
    default: TakeRefusal(response, ": it requires a login method that ORVEN does not support");
  }
}

void Registration::TakeTooBrief(const sip_msg& response) {
  const auto wanted = SecondsIn(response, SIP_HDR_MIN_EXPIRES);
  if (!wanted || *wanted <= asked_ || ++too_brief_ > kMostTooBrief) return TakeRefusal(response);
  life_ = *wanted;
  Ask(life_);
}

void Registration::Registered(const sip_msg& response) {
  if (asked_ == seconds(0)) return;  // the answer to End
  const seconds granted = GrantedLife(response, contact_, asked_);
  if (granted == seconds(0) && !settings_.register_nothing) {
    return TakeRefusal(response, ": the server keeps the registration for 0 s");
  }
  if (!told_.empty()) settings_.report("The registration of " + account_.address + " works again.");
  told_.clear();
  refused_ = false;
  registered_ = true;
  bound_ = contact_;
  too_brief_ = 0;
  const milliseconds pause = milliseconds(granted) * kRefreshPercent / 100;
  timer_.StartOnce(pause);
  path_.Keep(*stack_, servers_[server_].address, response);
  ports_.news({.state = RegistrationNews::State::Registered, .pause = pause});
  // Behind a router, registers under the public address, unless the server uses the path and not the address.
  // Only once before the next refresh, because some routers assign a different one each time.
  const bool by_path = sip_msg_hdr_has_value(&response, SIP_HDR_REQUIRE, "outbound");
  const bool elsewhere =
      !by_path && sa_isset(&seen_, SA_ALL) && bound_ != ContactUri(address_.user, seen_, response.tp);
  if (elsewhere && !settings_.register_nothing && !std::exchange(moved_, true)) Ask(life_);
}

void Registration::TakeRefusal(const sip_msg& refusal, const std::string& more, milliseconds pause) {
  if (const auto demanded = SecondsIn(refusal, SIP_HDR_RETRY_AFTER)) {
    pause =
        std::max<milliseconds>(std::min(*demanded, kLongestPause), settings_.timers.registration_retry_first);
  }
  RetryLater(trouble_.Refused(refusal.scode, std::string(View(refusal.reason)), more), refusal.scode, 0,
             pause);
}

void Registration::RetryLater(const LineTrouble& trouble, int status, int error, milliseconds pause) {
  refused_ = status != 0;
  // A server that answers must not be pressed; one that is silent or out of reach may be back at any moment.
  const auto& timers = settings_.timers;
  retry_ = refused_
               ? std::clamp(2 * retry_, timers.registration_retry_first, timers.registration_retry_longest)
               : std::clamp(2 * retry_, timers.silent_retry_first, timers.silent_retry_longest);
  const RegistrationNews news{.state = RegistrationNews::State::Failed,
                              .status = status,
                              .error = error,
                              .reason = trouble.log,
                              .trouble = trouble.owner,
                              .pause = pause != milliseconds(0) ? pause : retry_};
  ports_.news(news);
  if (std::exchange(told_, news.reason) != news.reason) {
    const auto minutes = std::chrono::duration_cast<std::chrono::minutes>(news.pause).count();
    settings_.report(
        "The registration of " + account_.address + " failed (" + news.reason +
        "); no calls can come in through it. ORVEN " +
        (minutes < 2 ? "keeps trying." : "tries again in " + std::to_string(minutes) + " minutes."));
  }
  registered_ = false;
  too_brief_ = 0;
  life_ = settings_.timers.registration_life;
  login_.Reset();
  path_.Leave();
  // Clients must not all send requests at the same moment when a server returns.
  const auto most = std::min<milliseconds>(news.pause / 4, kLongestSpread);
  const milliseconds spread(rand_u32() % static_cast<std::uint32_t>(most.count() + 1));
  timer_.StartOnce(news.pause + spread);
}

}  // namespace orven
