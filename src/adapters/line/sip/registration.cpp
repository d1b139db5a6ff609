// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/line/sip/registration.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <new>
#include <utility>

#include "adapters/line/sip/listen_addresses.h"
#include "adapters/line/sip/network_words.h"

namespace orven {
namespace {

using std::chrono::milliseconds;
using std::chrono::seconds;

/// A server may refuse one old answer and ask again; more is a wrong password.
constexpr int kMostChallenges = 3;

/// The part of a registration's life after which it is refreshed: early enough for one failed try.
constexpr int kRefreshPercent = 80;

/// The connection to the server is watched, not probed: servers need not answer probes.
constexpr std::uint32_t kWatchOnly = 24 * 3600;

bool DecodeAccount(const std::string& account, uri& parsed) {
  pl text{};
  pl_set_str(&text, account.c_str());
  return uri_decode(&parsed, &text) == 0 && pl_strcasecmp(&parsed.scheme, "sip") == 0 && parsed.user.l > 0 &&
         parsed.host.l > 0;
}

std::string ServerUri(const uri& account, const std::string& transport) {
  const std::string port = account.port != 0 ? ":" + std::to_string(account.port) : "";
  return "sip:" + std::string(View(account.host)) + port + ";transport=" + transport;
}

std::string PublicUri(const uri& account) {
  return "sip:" + std::string(View(account.user)) + "@" + std::string(View(account.host));
}

/// Without the brackets and the port that an address has in a URI.
std::string HostText(const sa& address) {
  std::array<char, 64> text{};
  (void)re_snprintf(text.data(), text.size(), "%j", &address);
  return text.data();
}

std::string RandomName() {
  std::array<char, 24> text{};
  (void)re_snprintf(text.data(), text.size(), "%016llx", rand_u64());
  return text.data();
}

/// The life that the server granted: of our binding, else of all (RFC 3261, section 10.2.4).
seconds GrantedLife(const sip_msg& response, const std::string& user, seconds asked) {
  struct Search {
    const std::string& user;
    std::uint32_t life = 0;
  } search{user};
  sip_msg_hdr_apply(
      &response, true, SIP_HDR_CONTACT,
      [](const sip_hdr* header, const sip_msg*, void* arg) {
        auto& wanted = *static_cast<Search*>(arg);
        sip_addr contact{};
        pl life{};
        if (sip_addr_decode(&contact, &header->val) != 0 || View(contact.uri.user) != wanted.user)
          return false;
        if (msg_param_decode(&contact.params, "expires", &life) == 0) wanted.life = pl_u32(&life);
        return wanted.life != 0;
      },
      &search);
  if (search.life == 0 && pl_isset(&response.expires)) search.life = pl_u32(&response.expires);
  return search.life != 0 ? seconds(search.life) : asked;
}

}  // namespace

std::string AccountProblem(const SipLineSettings& settings) {
  if (settings.account.empty()) return {};
  uri account{};
  if (!DecodeAccount(settings.account, account)) {
    return "account \"" + settings.account + "\" is no SIP address like sip:100@example.org";
  }
  if (settings.transport != "udp" && settings.transport != "tcp" && settings.transport != "tls") {
    return "transport \"" + settings.transport + "\" is none of udp, tcp and tls";
  }
  return {};
}

std::string ServerHost(const SipLineSettings& settings) {
  uri account{};
  return DecodeAccount(settings.account, account) ? std::string(View(account.host)) : "";
}

std::string ContactUser(const SipLineSettings& settings) {
  uri account{};
  return DecodeAccount(settings.account, account) ? std::string(View(account.user)) : "orven";
}

Registration::Registration(const SipLineSettings& settings, Towards towards,
                           std::function<std::string()> refusal)
    : settings_(settings),
      towards_(std::move(towards)),
      refusal_(std::move(refusal)),
      call_id_(RandomName()),
      timer_([this] { Start(); }),
      life_(settings.timers.registration_life),
      retry_(settings.timers.registration_retry_first) {
  sip_auth* auth = nullptr;
  const auto credentials = [](char** user, char** password, const char*, void* self) {
    const SipLineSettings& line = static_cast<Registration*>(self)->settings_;
    const std::string name = line.auth_user.empty() ? ContactUser(line) : line.auth_user;
    return str_dup(user, name.c_str()) | str_dup(password, line.password.c_str());
  };
  if (sip_auth_alloc(&auth, credentials, this, false) != 0) throw std::bad_alloc();
  auth_.reset(auth);
}

Registration::~Registration() {
  mem_deref(request_);
  mem_deref(connection_);
}

void Registration::Start() {
  if (!registered_) settings_.registration_news({});
  uri account{};
  (void)DecodeAccount(settings_.account, account);
  const auto listen = ParseListenAddress(settings_.listen);
  const ServerName server{std::string(View(account.host)), account.port, settings_.transport,
                          listen ? sa_af(&*listen) : AF_INET};
  lookup_.Find(server, [this](std::vector<sa> servers) {
    Prefer(std::move(servers));
    Ask(life_);
  });
}

/// Whom we were registered with comes first while it is there; who was there serves while nobody can be
/// asked.
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
  // What stands is left alone, and whom the server refuses it refuses from here, too.
  if (!moved && !other_way && (registered_ || refused_)) return;
  timer_.Stop();
  request_ = static_cast<struct sip_request*>(mem_deref(request_));
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
  if (error != 0) RetryLater(NetworkWords(settings_, error, ""), 0, error);
}

bool Registration::NextServer() {
  if (servers_.size() < 2) return false;
  servers_.erase(servers_.begin());
  return true;
}

void Registration::End() {
  timer_.Stop();
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
  uri account{};
  (void)DecodeAccount(settings_.account, account);
  const std::string own = PublicUri(account), server = ServerUri(account, settings_.transport);
  // The request names the server as the account does, and goes to the address that has been found.
  const std::string address = HostText(servers_.front()), transport = ";transport=" + settings_.transport;
  uri route{};
  pl_set_str(&route.scheme, "sip");
  pl_set_str(&route.host, address.c_str());
  pl_set_str(&route.params, transport.c_str());
  route.port = sa_port(&servers_.front());
  return sip_requestf(&request_, stack_, true, "REGISTER", server.c_str(), &route, auth_.get(), contact,
                      response, this,
                      "To: <%s>\r\nFrom: <%s>;tag=%s\r\nCall-ID: %s\r\nCSeq: %u REGISTER\r\n"
                      "User-Agent: ORVEN\r\nContent-Length: 0\r\n\r\n",
                      own.c_str(), own.c_str(), call_id_.c_str(), call_id_.c_str(), ++sequence_);
}

int Registration::WriteContact(sip_transp transport, const sa& source, mbuf& request) const {
  if (settings_.register_nothing) return 0;
  return mbuf_printf(&request, "Contact: <sip:%s@%J%s>;expires=%u\r\n", ContactUser(settings_).c_str(),
                     &source, sip_transp_param(transport), static_cast<unsigned>(asked_.count()));
}

void Registration::TakeResponse(int error, const sip_msg* response) {
  if (error == 0 && response->scode < 200) return;
  // Another of the server's addresses may do better (RFC 3263, section 4.3).
  if ((error != 0 || response->scode == 503) && NextServer()) return Ask(asked_);
  if (error == 0 && response->scode < 300) return Registered(*response);
  if (error == 0 && (response->scode == 401 || response->scode == 407) && ++challenges_ <= kMostChallenges) {
    if (sip_auth_authenticate(auth_.get(), response) != 0) {
      // The server does not know its own question any more, or the answer was wrong: once more anew.
      sip_auth_reset(auth_.get());
      if (sip_auth_authenticate(auth_.get(), response) != 0)
        return RetryLater("the server's question cannot be answered", response->scode);
    }
    return Ask(asked_);
  }
  if (error == 0 && response->scode == 423) {
    const sip_hdr* least = sip_msg_hdr(response, SIP_HDR_MIN_EXPIRES);
    const seconds wanted(least != nullptr ? pl_u32(&least->val) : 0);
    if (wanted > life_) {
      life_ = wanted;
      return Ask(life_);
    }
  }
  if (error != 0) return RetryLater(NetworkWords(settings_, error, refusal_()), 0, error);
  RetryLater(std::to_string(response->scode) + " " + std::string(View(response->reason)), response->scode);
}

void Registration::Registered(const sip_msg& response) {
  if (failing_) settings_.report("The registration of " + settings_.account + " works again.");
  failing_ = false;
  refused_ = false;
  // What answers our farewell (RFC 3261, section 10.2.2) says nothing of a registration.
  if (asked_ != seconds(0)) settings_.registration_news({RegistrationNews::State::Registered, 0, 0, {}});
  registered_ = true;
  challenges_ = 0;
  retry_ = settings_.timers.registration_retry_first;
  const milliseconds granted = GrantedLife(response, ContactUser(settings_), asked_);
  timer_.StartOnce(granted * kRefreshPercent / 100);
  connection_ = static_cast<sip_keepalive*>(mem_deref(connection_));
  if (response.tp == SIP_TRANSP_UDP) return;
  // Calls come in over this very connection: when it goes, the registration is worth nothing.
  (void)sip_keepalive_start(
      &connection_, stack_, &response, kWatchOnly,
      [](int, void* self) { static_cast<Registration*>(self)->RetryLater("the connection broke"); }, this);
}

void Registration::RetryLater(const std::string& reason, int status, int error) {
  settings_.registration_news({RegistrationNews::State::Failed, status, error, reason});
  if (!failing_) {
    settings_.report("The registration of " + settings_.account + " failed (" + reason +
                     "); no call can come in by it. ORVEN goes on trying.");
  }
  failing_ = true;
  refused_ = status != 0;
  registered_ = false;
  challenges_ = 0;
  sip_auth_reset(auth_.get());
  // Not all clients of a server that comes back may ask in the same moment.
  const milliseconds spread(rand_u32() % static_cast<std::uint32_t>(retry_.count() / 4 + 1));
  timer_.StartOnce(retry_ + spread);
  retry_ = std::min(retry_ * 2, settings_.timers.registration_retry_longest);
}

}  // namespace orven
