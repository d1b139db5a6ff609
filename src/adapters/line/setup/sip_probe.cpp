// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/line/setup/sip_probe.h"

#include <algorithm>
#include <cerrno>
#include <optional>
#include <thread>
#include <utility>

#include "adapters/line/setup/free_address.h"
#include "adapters/line/setup/latest.h"
#include "adapters/line/sip/sip_line.h"

namespace orven {
namespace {

using std::chrono::milliseconds;
using State = RegistrationNews::State;

constexpr milliseconds kLookForResult{50};

/// Several tests may run at once, and each needs a port.
constexpr int kMostOpenings = 10;

/// Calls that come in during the test are not answered.
void Ignore(const LineEvent& /*event*/) {}

/// The account's address "sip:user@server" without the scheme, and its parts.
struct Names {
  std::string whole, user, server;
};

Names NamesOf(const std::string& address) {
  const auto whole = address.substr(address.find(':') + 1);
  const auto at = std::min(whole.find('@'), whole.size() - 1);
  return {whole, whole.substr(0, at), whole.substr(at + 1)};
}

Words LoginRefused(const SipAccount& account, const RegistrationNews& news) {
  const auto names = NamesOf(account.address);
  const auto& login = account.auth_user.empty() ? names.user : account.auth_user;
  const char* words =
      news.status == 403
          ? Tr("The server %1 refuses the login (%2): the user \"%3\" or the password is wrong, or the "
               "account "
               "may not be used from here.")
          : Tr("The server %1 refuses the login (%2): the user \"%3\" or the password is wrong.");
  return Words(words).Arg(names.server).Arg(news.reason).Arg(login);
}

Words AnswerWords(const SipAccount& account, const RegistrationNews& news) {
  const auto names = NamesOf(account.address);
  switch (news.status) {
    case 401:
    case 403:
    case 407: return LoginRefused(account, news);
    case 404:
    case 604:
      return Words("The server %1 knows no user \"%2\" (%3).")
          .Arg(names.server)
          .Arg(names.user)
          .Arg(news.reason);
    default: break;
  }
  if (news.status >= 500)
    return Words("The server %1 is there, but cannot do it now (%2).").Arg(names.server).Arg(news.reason);
  return Words("The server %1 does not accept it (%2).").Arg(names.server).Arg(news.reason);
}

Words NoAnswer(const SipAccount& account, milliseconds patience) {
  const auto seconds = std::chrono::duration_cast<std::chrono::seconds>(patience).count();
  // TLS has its own default port (RFC 3261, section 19.1.2), which is easily forgotten.
  const char* words =
      account.transport == "tls"
          ? Tr("There is no answer from %1 within %2 s: the server's name, its port, the transport or the "
               "network may be wrong. The port for TLS is often 5061.")
          : Tr("There is no answer from %1 within %2 s: the server's name, its port, the transport or the "
               "network may be wrong.");
  return Words(words).Arg(NamesOf(account.address).server).Arg(seconds);
}

/// All accounts are registered.
Words Success(const std::vector<SipAccount>& accounts, const Words& where) {
  if (accounts.empty()) return Words("Calls can come in at %1; there is no account to register.").Arg(where);
  const auto names = NamesOf(accounts.front().address);
  if (accounts.size() == 1) {
    return Words("Calls can come in at %1, and the server %2 accepts the account %3.")
        .Arg(where)
        .Arg(names.server)
        .Arg(names.user);
  }
  std::string all;
  for (const auto& account : accounts) all += (all.empty() ? "" : ", ") + NamesOf(account.address).whole;
  return Words("Calls can come in at %1, and all accounts are accepted: %2.").Arg(where).Arg(all);
}

LineTestResult ResultOf(const SipLineSettings& settings, const RegistrationNews& news, const Words& where,
                        milliseconds patience) {
  if (settings.accounts.empty() || news.state == State::Registered)
    return {true, Success(settings.accounts, where)};
  const auto about = std::ranges::find(settings.accounts, news.account, &SipAccount::address);
  const auto& account = about != settings.accounts.end() ? *about : settings.accounts.front();
  if (news.state == State::Trying) return {false, NoAnswer(account, patience)};
  return {false, news.status != 0 ? AnswerWords(account, news) : Words("%1.").Arg(news.trouble)};
}

/// Makes `address` usable for a test; otherwise says why it cannot be.
std::optional<Words> Prepare(std::string& address, const std::vector<std::string>& open_addresses) {
  if (address.empty()) return std::nullopt;
  const int error = ErrorAt(address);
  if (error == EADDRNOTAVAIL)
    return Words("The address for calls, %1, is not an address of this computer.").Arg(address);
  if (error != EADDRINUSE) return std::nullopt;
  const auto next = NextFree(address).value_or(address);
  if (ErrorAt(address, open_addresses) != EADDRINUSE) {
    address = next;
    return std::nullopt;
  }
  return Words(
             "Port %1 is taken by another program: end that program, or use another address for calls, such "
             "as "
             "%2.")
      .Arg(address.substr(address.rfind(':') + 1))
      .Arg(next);
}

Words WhereOf(const SipLineSettings& settings) {
  return settings.tls_listen.empty()
             ? Words(settings.listen)
             : Words("%1, with TLS at %2").Arg(settings.listen).Arg(settings.tls_listen);
}

/// The line as it is, but at free ports in place of `open_addresses`. Nothing after a failure, which `result`
/// then tells.
std::unique_ptr<LineDriver> OpenLine(const SipLineSettings& settings,
                                     const std::vector<std::string>& open_addresses, LineTestResult& result) {
  for (int openings = kMostOpenings;; --openings) {
    auto here = settings;
    for (auto* address : {&here.listen, &here.tls_listen}) {
      if (const auto problem = Prepare(*address, open_addresses)) {
        result = {false, *problem, address == &here.listen ? "txtListen" : ""};
        return nullptr;
      }
    }
    auto driver = MakeSipLine(here);
    const auto failure = driver->Open(Ignore);
    if (!failure) return driver;
    const bool elsewhere = here.listen != settings.listen || here.tls_listen != settings.tls_listen;
    // Another test has taken the free port meanwhile.
    if (failure->result == kTelephonyLineInUse && elsewhere && openings > 1) continue;
    result = {false, Words("%1.").Arg(failure->trouble.Empty() ? Words(failure->reason) : failure->trouble),
              "txtListen"};
    return nullptr;
  }
}

}  // namespace

LineTestResult ProbeSipLine(SipLineSettings settings, const SipProbeOptions& options,
                            const std::atomic<bool>& cancelled) {
  const auto latest = std::make_shared<Latest<RegistrationNews>>();
  settings.register_nothing = options.only_asks;
  settings.registration_news = [latest](const RegistrationNews& news) {
    if (latest->Get().state == State::Trying) latest->Take(news);
  };
  settings.timers.registration_life = std::chrono::seconds(60);
  LineTestResult fault;
  const auto driver = OpenLine(settings, options.open_addresses, fault);
  if (driver == nullptr) return fault;
  const auto end = std::chrono::steady_clock::now() + options.patience;
  const auto waits = [&] { return !cancelled && std::chrono::steady_clock::now() < end; };
  while (!settings.accounts.empty() && latest->Get().state == State::Trying && waits())
    std::this_thread::sleep_for(kLookForResult);
  driver->Close();
  return ResultOf(settings, latest->Get(), WhereOf(settings), options.patience);
}

}  // namespace orven
