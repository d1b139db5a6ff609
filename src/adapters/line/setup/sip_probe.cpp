// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/line/setup/sip_probe.h"

#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <future>
#include <optional>
#include <utility>

#include "adapters/line/sip/libre.h"
#include "adapters/line/sip/listen_address.h"
#include "adapters/line/sip/sip_line.h"

namespace orven {
namespace {

using std::chrono::milliseconds;
using State = RegistrationNews::State;

constexpr milliseconds kLookForCancel{50};

/// TLS has its own default port (RFC 3261, section 19.1.2), which is easily forgotten.
constexpr const char* kTlsPort = " The port for TLS is often 5061.";

/// Calls that come in during the test are not answered.
void Ignore(const LineEvent& /*event*/) {}

/// The first result of a registration, which the SIP thread reports.
class Outcome {
 public:
  void Take(const RegistrationNews& news) {
    if (news.state != State::Trying && !std::exchange(taken_, true)) first_.set_value(news);
  }

  std::optional<RegistrationNews> Wait(milliseconds patience, const std::atomic<bool>& cancelled) {
    const auto end = std::chrono::steady_clock::now() + patience;
    auto news = first_.get_future();
    while (news.wait_for(kLookForCancel) != std::future_status::ready) {
      if (cancelled || std::chrono::steady_clock::now() >= end) return std::nullopt;
    }
    return news.get();
  }

 private:
  std::promise<RegistrationNews> first_;
  bool taken_ = false;  ///< SIP thread only
};

/// The addresses of which one that can be bound stands for `listen`.
std::vector<sa> Samples(const ListenAddress& listen) {
  if (listen.hosts == ListenAddress::Hosts::kAddress) return PresentAddresses(listen, {});
  sa ipv4{}, ipv6{};
  sa_init(&ipv4, AF_INET);
  sa_init(&ipv6, AF_INET6);
  // "::" is IPv4, too.
  return listen.hosts == ListenAddress::Hosts::kEveryIpv4 ? std::vector{ipv4} : std::vector{ipv6, ipv4};
}

/// A port of `address` that is free for UDP and TCP at this moment; 0 when there is none.
std::uint16_t FreePortAt(sa address) {
  constexpr int kTries = 20;
  const auto bind_to = [&address](int type) {
    const int socket = ::socket(sa_af(&address), type | SOCK_CLOEXEC, 0);
    const bool bound = ::bind(socket, &address.u.sa, address.len) == 0;
    address.len = sizeof address.u;
    if (bound) (void)::getsockname(socket, &address.u.sa, &address.len);
    ::close(socket);
    return bound;
  };
  for (int i = 0; i < kTries; ++i) {
    sa_set_port(&address, 0);
    if (!bind_to(SOCK_DGRAM)) return 0;
    if (bind_to(SOCK_STREAM)) return sa_port(&address);
  }
  return 0;
}

std::string LoginRefused(const TelephoneLine& line, const std::string& reason) {
  return "The server " + line.server + " refuses the login (" + reason + "): the user \"" +
         (line.auth_user.empty() ? line.user : line.auth_user) + "\" or the password is wrong";
}

std::string AnswerWords(const TelephoneLine& line, const RegistrationNews& news) {
  switch (news.status) {
    case 401:
    case 407: return LoginRefused(line, news.reason) + '.';
    case 403: return LoginRefused(line, news.reason) + ", or the account may not be used from here.";
    case 404:
    case 604:
      return "The server " + line.server + " knows no user \"" + line.user + "\" (" + news.reason + ").";
    default: break;
  }
  const char* who = news.status >= 500 ? " is there, but cannot do it now (" : " does not accept it (";
  return "The server " + line.server + who + news.reason + ").";
}

std::string Sentence(std::string words) {
  if (!words.empty() && words[0] >= 'a' && words[0] <= 'z')
    words[0] = static_cast<char>(words[0] - 'a' + 'A');
  return words + '.';
}

LineTestResult ResultOf(const TelephoneLine& line, const std::optional<RegistrationNews>& news,
                        milliseconds patience) {
  if (!news) {
    const auto seconds = std::chrono::duration_cast<std::chrono::seconds>(patience).count();
    return {false, "There is no answer from " + line.server + " within " + std::to_string(seconds) +
                       " s: the server's name, its port, the transport or the network may be wrong." +
                       (line.transport == "tls" ? kTlsPort : "")};
  }
  if (news->state == State::Registered) {
    return {true, "The server " + line.server + " accepts the account " + line.user + "."};
  }
  return {false, news->status != 0 ? AnswerWords(line, *news) : Sentence(news->reason)};
}

std::string PortOf(const std::string& address) {
  return address.substr(address.rfind(':'));
}

/// Replaces the port of `address` by a free one. False when it is not an address of this computer.
bool TakeFreePort(std::string& address) {
  const auto listen = ParseListen(address);
  std::uint16_t port = 0;
  for (const sa& one : listen ? Samples(*listen) : std::vector<sa>{}) {
    if (port == 0) port = FreePortAt(one);
  }
  if (port != 0) address = address.substr(0, address.rfind(':') + 1) + std::to_string(port);
  return port != 0;
}

LineTestResult TestListening(const SipLineSettings& settings, const std::string& where) {
  const auto driver = MakeSipLine(settings);
  if (const auto failure = driver->Open(Ignore))
    return {false, "Calls cannot come in: " + failure->reason + '.'};
  driver->Close();
  return {true, "Calls can come in at " + where + "; there is no account to register."};
}

}  // namespace

LineTestResult ProbeSipLine(const TelephoneLine& line, SipLineSettings settings,
                            const SipProbeOptions& options, const std::atomic<bool>& cancelled) {
  const auto where =
      settings.listen + (settings.tls_listen.empty() ? "" : ", with TLS at " + settings.tls_listen);
  const auto is_open = [&](const std::string& address) {
    return std::ranges::any_of(options.open_addresses,
                               [&](const auto& open) { return PortOf(open) == PortOf(address); });
  };
  // The window shows the first account only.
  if (settings.accounts.size() > 1) settings.accounts.resize(1);
  for (auto* address : {&settings.listen, &settings.tls_listen}) {
    if (address->empty() || (settings.accounts.empty() && !is_open(*address))) continue;
    if (!TakeFreePort(*address))
      return {false, "The address for calls, " + *address + ", is not an address of this computer."};
  }
  if (settings.accounts.empty()) return TestListening(settings, where);
  Outcome outcome;
  settings.register_nothing = options.registered_now;
  settings.registration_news = [&outcome](const RegistrationNews& news) { outcome.Take(news); };
  settings.timers.registration_life = std::chrono::seconds(60);
  const auto driver = MakeSipLine(settings);
  if (const auto failure = driver->Open(Ignore))
    return {false, "The line cannot be opened: " + failure->reason + '.'};
  const auto news = outcome.Wait(options.patience, cancelled);
  driver->Close();
  return ResultOf(line, news, options.patience);
}

}  // namespace orven
