// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/line/sip/registration.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <charconv>
#include <limits>
#include <optional>
#include <utility>

#include "adapters/line/sip/sip_line_settings.h"
#include "adapters/line/sip/sip_transports.h"

namespace orven {
namespace {

using std::chrono::milliseconds;
using std::chrono::seconds;

/// How many times in a row a server may ask for a longer lifetime.
constexpr int kMostTooBrief = 3;

/// The part of a registration's lifetime after which it is refreshed: early enough for one failed try.
constexpr int kRefreshPercent = 80;

/// Even if the server grants more: it may restart and lose its registrations.
constexpr seconds kLongestLife = std::chrono::hours(1);

/// The longest pause that a server can ask for.
constexpr seconds kLongestPause = std::chrono::hours(24);

/// Retries that only other routes cause are at least this far apart.
constexpr seconds kRest(5);

/// The longest random delay of a retry.
constexpr seconds kLongestSpread(60);

/// The connection to the server is watched, not probed: not all servers answer probes.
constexpr std::uint32_t kWatchOnly = 24 * 3600;

std::string ServerUri(const SipAccount& account, const std::string& transport) {
  const std::string port = account.port != 0 ? ":" + std::to_string(account.port) : "";
  return "sip:" + account.host + port + ";transport=" + transport;
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

/// The seconds at the beginning of `text`, as many as 32 bits hold (RFC 3261, section 20.19); nothing when
/// it does not begin with digits.
std::optional<seconds> SecondsOf(std::string_view text) {
  std::uint32_t count = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), count);
  if (error == std::errc::invalid_argument) return std::nullopt;
  return seconds(error == std::errc() ? count : std::numeric_limits<std::uint32_t>::max());
}

std::optional<seconds> SecondsIn(const sip_msg& response, sip_hdrid id) {
  const sip_hdr* header = sip_msg_hdr(&response, id);
  return header != nullptr ? SecondsOf(View(header->val)) : std::nullopt;
}

/// The lifetime that the server granted our binding `contact` (RFC 3261, section 10.2.4); 0 when it keeps
/// none. The server also lists the account's other telephones: their shortest lifetime counts if ours cannot
/// be recognised.
seconds GrantedLife(const sip_msg& response, const std::string& contact, seconds asked) {
  struct Search {
    uri own{};
    bool found = false;
    std::optional<seconds> ours, others;
  } search;
  pl text{};
  pl_set_str(&text, contact.c_str());
  (void)uri_decode(&search.own, &text);
  sip_msg_hdr_apply(
      &response, true, SIP_HDR_CONTACT,
      [](const sip_hdr* header, const sip_msg*, void* arg) {
        auto& wanted = *static_cast<Search*>(arg);
        sip_addr told{};
        pl life{};
        if (sip_addr_decode(&told, &header->val) != 0 || pl_cmp(&told.uri.user, &wanted.own.user) != 0)
          return false;
        std::optional<seconds> granted;
        if (msg_param_decode(&told.params, "expires", &life) == 0) granted = SecondsOf(View(life));
        wanted.found = pl_cmp(&told.uri.host, &wanted.own.host) == 0 && told.uri.port == wanted.own.port;
        if (wanted.found) wanted.ours = granted;
        if (granted) wanted.others = std::min(wanted.others.value_or(*granted), *granted);
        return wanted.found;
      },
      &search);
  auto life = search.found ? search.ours : search.others;
  if (!life) life = SecondsIn(response, SIP_HDR_EXPIRES);
  return std::min(life.value_or(asked), kLongestLife);
}

}  // namespace

Registration::Registration(const SipLineSettings& settings, Towards towards,
                           std::function<std::string()> refusal)
    : settings_(settings),
      account_(AccountOf(settings).value_or(SipAccount{})),
      towards_(std::move(towards)),
      refusal_(std::move(refusal)),
      call_id_(RandomName()),
      login_(settings.auth_user.empty() ? account_.user : settings.auth_user, settings.password),
      timer_([this] { Start(); }),
      keep_alive_timer_([this] { SendKeepAlive(); }),
      life_(settings.timers.registration_life),
      retry_(settings.timers.registration_retry_first) {}

Registration::~Registration() {
  mem_deref(request_);
  mem_deref(connection_);
}

void Registration::Start() {
  if (!registered_) settings_.registration_news({});
  moved_ = false;
  started_ = std::chrono::steady_clock::now();
  const auto listen = ParseListenAddress(settings_.listen);
  const ServerName server{account_.host, account_.port, settings_.transport,
                          listen ? sa_af(&*listen) : AF_INET};
  lookup_.Find(server, [this](std::vector<sa> servers) {
    timer_.Stop();
    Prefer(std::move(servers));
    Ask(life_);
  });
}

/// The server with which we were registered comes first if it is still listed; without a result the known
/// servers stay.
void Registration::Prefer(std::vector<sa> servers) {
  if (servers.empty()) return;
  if (!servers_.empty()) {
    const auto same = std::find_if(servers.begin(), servers.end(),
                                   [this](const sa& one) { return sa_cmp(&one, &servers_.front(), SA_ALL); });
    if (same != servers.end()) std::rotate(servers.begin(), same, same + 1);
  }
  servers_ = std::move(servers);
}

void Registration::NetworkChanged(bool moved) {
  const bool other_way = !servers_.empty() && towards_(servers_.front()) != stack_;
  if (!moved && !other_way) {
    // A registration that works is left alone, a pending request will be answered, and a refusal would be
    // repeated. Routes may change all the time, so the pause is not cut short each time.
    if (registered_ || refused_ || request_ != nullptr) return;
    const auto rest = started_ + kRest - std::chrono::steady_clock::now();
    return timer_.StartOnce(std::max(milliseconds(0), std::chrono::ceil<milliseconds>(rest)));
  }
  timer_.Stop();
  request_ = static_cast<struct sip_request*>(mem_deref(request_));
  login_.Reset();  // an unconfirmed login attempt does not count against the password
  retry_ = settings_.timers.registration_retry_first;
  Start();
}

void Registration::Leave(const sip& stack) {
  if (stack_ != &stack) return;
  connection_ = static_cast<sip_keepalive*>(mem_deref(connection_));
  request_ = static_cast<struct sip_request*>(mem_deref(request_));
  stack_ = nullptr;
}

void Registration::Ask(seconds life) {
  int error = Send(life);
  while (error != 0 && NextServer()) error = Send(life);
  if (error != 0) RetryLater({.error = error, .reason = ServerFailureText(settings_, error, "")});
}

bool Registration::NextServer() {
  if (servers_.size() < 2) return false;
  servers_.erase(servers_.begin());
  return true;
}

void Registration::End() {
  timer_.Stop();
  keep_alive_timer_.Stop();
  lookup_.GiveUp();
  connection_ = static_cast<sip_keepalive*>(mem_deref(connection_));
  request_ = static_cast<struct sip_request*>(mem_deref(request_));
  if (registered_) (void)Send(seconds(0));
  registered_ = false;
}

int Registration::Send(seconds life) {
  asked_ = life;
  if (servers_.empty()) return ENOENT;
  stack_ = towards_(servers_.front());
  if (stack_ == nullptr) return ENETUNREACH;
  const auto contact = [](sip_transp transport, const sa* source, const sa*, mbuf* request, void* self) {
    return static_cast<Registration*>(self)->WriteContact(transport, *source, *request);
  };
  const auto response = [](int error, const sip_msg* message, void* self) {
    static_cast<Registration*>(self)->TakeResponse(error, message);
  };
  const std::string own = "sip:" + account_.user + '@' + account_.host;
  const std::string server = ServerUri(account_, settings_.transport);
  // The request names the server as the account does, and is sent to the address that was found.
  const std::string address = HostText(servers_.front()), transport = ";transport=" + settings_.transport;
  uri route{};
  pl_set_str(&route.scheme, "sip");
  pl_set_str(&route.host, address.c_str());
  pl_set_str(&route.params, transport.c_str());
  route.port = sa_port(&servers_.front());
  return sip_requestf(&request_, stack_, true, "REGISTER", server.c_str(), &route, nullptr, contact, response,
                      this,
                      "To: <%s>\r\nFrom: <%s>;tag=%s\r\nCall-ID: %s\r\nCSeq: %u REGISTER\r\n"
                      "%sUser-Agent: ORVEN\r\nContent-Length: 0\r\n\r\n",
                      own.c_str(), own.c_str(), call_id_.c_str(), call_id_.c_str(), ++sequence_,
                      login_.Headers("REGISTER", server).c_str());
}

int Registration::WriteContact(sip_transp transport, const sa& source, mbuf& request) {
  if (settings_.register_nothing) return 0;
  if (!sa_cmp(&source, &own_, SA_ALL)) seen_ = {};
  own_ = source;
  const sa& here = sa_isset(&seen_, SA_ALL) ? seen_ : own_;
  const bool leaving = asked_ == seconds(0) && !bound_.empty();
  contact_ = leaving ? bound_ : ContactUri(account_.user, here, transport);
  // Calls to the old address would get lost.
  const std::string old =
      bound_.empty() || bound_ == contact_ ? "" : "Contact: <" + bound_ + ">;expires=0\r\n";
  return mbuf_printf(&request, "Contact: <%s>;expires=%u\r\n%s", contact_.c_str(),
                     static_cast<unsigned>(asked_.count()), old.c_str());
}

bool Registration::IsServer(const sa& source) const {
  return std::ranges::any_of(servers_, [&source](const sa& one) { return sa_cmp(&one, &source, SA_ADDR); });
}

std::string Registration::PublicContact(const sip_msg& invite) const {
  if (!sa_isset(&seen_, SA_ALL) || servers_.empty() || !sa_cmp(&invite.src, &servers_.front(), SA_ADDR))
    return {};
  return ContactUri(account_.user, seen_, invite.tp);
}

void Registration::TakeResponse(int error, const sip_msg* response) {
  if (error == 0 && response->scode < 200) return;
  // Another address of the server may work (RFC 3263, section 4.3).
  if ((error != 0 || response->scode == 503) && NextServer()) return Ask(asked_);
  if (error != 0)
    return RetryLater({.error = error, .reason = ServerFailureText(settings_, error, refusal_())});
  TakePublicAddress(*response);
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

/// The answer tells the address from which the server got our request (RFC 3261, section 18.2.1; RFC 3581).
/// Each connection has its own port, so over TCP and TLS only another address indicates a router.
void Registration::TakePublicAddress(const sip_msg& response) {
  pl host{};
  pl port{};
  if (msg_param_decode(&response.via.params, "received", &host) != 0) host = {};
  if (msg_param_decode(&response.via.params, "rport", &port) != 0) port = {};
  sa seen = response.via.addr;
  if (pl_isset(&host) && sa_set(&seen, &host, sa_port(&response.via.addr)) != 0) return;
  if (pl_isset(&port)) sa_set_port(&seen, static_cast<std::uint16_t>(pl_u32(&port)));
  if (!sa_isset(&seen, SA_ALL) || !sa_isset(&own_, SA_ALL)) return;
  const int what = response.tp == SIP_TRANSP_UDP ? SA_ALL : SA_ADDR;
  const bool told = pl_isset(&host) || pl_isset(&port);
  if (told) seen_ = sa_cmp(&seen, &own_, what) ? sa{} : seen;
}

void Registration::Registered(const sip_msg& response) {
  if (asked_ == seconds(0)) return;  // the answer to End
  const seconds granted = GrantedLife(response, contact_, asked_);
  if (granted == seconds(0) && !settings_.register_nothing) {
    return TakeRefusal(response, ": the server keeps the registration for 0 s");
  }
  if (!told_.empty()) settings_.report("The registration of " + settings_.account + " works again.");
  told_.clear();
  refused_ = false;
  registered_ = true;
  bound_ = contact_;
  too_brief_ = 0;
  retry_ = settings_.timers.registration_retry_first;
  const milliseconds pause = milliseconds(granted) * kRefreshPercent / 100;
  timer_.StartOnce(pause);
  KeepReachable(response);
  settings_.registration_news({.state = RegistrationNews::State::Registered, .pause = pause});
  // Behind a router, registers under the public address. Only once before the next refresh, because some
  // routers assign a different one each time.
  const bool elsewhere = sa_isset(&seen_, SA_ALL) && bound_ != ContactUri(account_.user, seen_, response.tp);
  if (elsewhere && !settings_.register_nothing && !std::exchange(moved_, true)) Ask(life_);
}

/// Keeps open the path that calls take.
void Registration::KeepReachable(const sip_msg& response) {
  connection_ = static_cast<sip_keepalive*>(mem_deref(connection_));
  if (response.tp == SIP_TRANSP_UDP) return keep_alive_timer_.StartPeriodic(settings_.timers.keep_alive);
  // Calls arrive over this connection: without it the registration is useless.
  (void)sip_keepalive_start(
      &connection_, stack_, &response, kWatchOnly,
      [](int, void* self) {
        static_cast<Registration*>(self)->RetryLater({.reason = "the connection broke"});
      },
      this);
}

/// An empty message (RFC 5626, section 4.4.1), so that routers between the server and us keep the path open.
void Registration::SendKeepAlive() {
  const LibrePtr<mbuf> empty(mbuf_alloc(4));
  if (stack_ == nullptr || servers_.empty() || empty == nullptr ||
      mbuf_write_str(empty.get(), "\r\n\r\n") != 0)
    return;
  mbuf_set_pos(empty.get(), 0);
  (void)sip_send(stack_, nullptr, SIP_TRANSP_UDP, &servers_.front(), empty.get());
}

void Registration::TakeRefusal(const sip_msg& refusal, const std::string& more, milliseconds pause) {
  if (const auto demanded = SecondsIn(refusal, SIP_HDR_RETRY_AFTER)) {
    pause =
        std::max<milliseconds>(std::min(*demanded, kLongestPause), settings_.timers.registration_retry_first);
  }
  RetryLater({.status = refusal.scode,
              .reason = std::to_string(refusal.scode) + ' ' + std::string(View(refusal.reason)) + more},
             pause);
}

void Registration::RetryLater(const RegistrationNews& failure, milliseconds pause) {
  RegistrationNews news = failure;
  news.state = RegistrationNews::State::Failed;
  news.pause = pause != milliseconds(0) ? pause : retry_;
  settings_.registration_news(news);
  if (std::exchange(told_, news.reason) != news.reason) {
    const auto minutes = std::chrono::duration_cast<std::chrono::minutes>(news.pause).count();
    settings_.report(
        "The registration of " + settings_.account + " failed (" + news.reason +
        "); no calls can come in through it. ORVEN " +
        (minutes < 2 ? "keeps trying." : "tries again in " + std::to_string(minutes) + " minutes."));
  }
  refused_ = failure.status != 0;
  registered_ = false;
  too_brief_ = 0;
  life_ = settings_.timers.registration_life;
  login_.Reset();
  keep_alive_timer_.Stop();
  // Clients must not all send requests at the same moment when a server returns.
  const auto most = std::min<milliseconds>(news.pause / 4, kLongestSpread);
  const milliseconds spread(rand_u32() % static_cast<std::uint32_t>(most.count() + 1));
  timer_.StartOnce(news.pause + spread);
  retry_ = std::min(retry_ * 2, settings_.timers.registration_retry_longest);
}

}  // namespace orven
