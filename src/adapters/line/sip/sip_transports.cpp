// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/line/sip/sip_transports.h"

#include <algorithm>
#include <cerrno>
#include <stdexcept>
#include <utility>

#include "adapters/line/sip/listen_addresses.h"
#include "adapters/line/sip/own_certificate.h"
#include "adapters/line/sip/registration.h"
#include "adapters/line/sip/sip_requests.h"
#include "platform/line_driver.h"

namespace orven {
namespace {

/// A line on every address looks for new ones so often: a network that comes up, an address that changes.
constexpr std::chrono::seconds kAddressWatch{10};

std::unique_ptr<TlsContext> OwnTls(const SipLineSettings& settings) {
  if (!settings.tls_certificate.empty()) return TlsContext::Showing(settings.tls_certificate);
  if (settings.tls_made_certificate.empty()) throw std::runtime_error("tls_listen needs a tls_certificate");
  MakeCertificateOnFirstUse(settings.tls_made_certificate);
  return TlsContext::Showing(settings.tls_made_certificate);
}

}  // namespace

SipTransports::SipTransports(const SipLineSettings& settings)
    : settings_(settings), watch_([this] {
        for (Listener& listener : listeners_) (void)AddNewAddresses(listener);
      }) {}

std::optional<OpenFailure> SipTransports::Start(sip& stack) {
  stack_ = &stack;
  const bool to_server = !settings_.account.empty() && settings_.transport == "tls";
  try {
    if (!settings_.tls_listen.empty()) {
      // The library has one set of rules for all connections that we open, and to a caller by TLS we may
      // have to open one: it could not show the certificate that the server must.
      if (to_server) {
        throw std::runtime_error(
            "tls_listen cannot be used together with an account over TLS; "
            "calls by TLS come in by the account then");
      }
      own_tls_ = OwnTls(settings_);
    }
    if (to_server) server_tls_ = TlsContext::Checking(ServerHost(settings_), settings_.tls_trust);
  } catch (const std::runtime_error& error) {
    return OpenFailure{kTelephonyDeviceFailed, error.what()};
  }
  if (auto failure = AddListener(settings_.listen, false)) return failure;
  if (own_tls_ != nullptr) {
    if (auto failure = AddListener(settings_.tls_listen, true)) return failure;
  }
  if (server_tls_ != nullptr) {
    const int error = AddWayToServer(listeners_.front().listening.front());
    if (error != 0) return OpenFailure{kTelephonyDeviceFailed, "no TLS: " + ErrorWords(error)};
  }
  const bool any = std::any_of(listeners_.begin(), listeners_.end(),
                               [](const Listener& one) { return sa_is_any(&one.address); });
  if (any) watch_.StartPeriodic(kAddressWatch);
  return std::nullopt;
}

std::optional<OpenFailure> SipTransports::AddListener(const std::string& text, bool secure) {
  const auto address = ParseListenAddress(text);
  if (!address) {
    return OpenFailure{kTelephonyDeviceFailed,
                       "listen address \"" + text + "\" is no address and port like 127.0.0.1:5060"};
  }
  Listener& listener = listeners_.emplace_back(Listener{text, *address, {}, secure});
  int error = AddNewAddresses(listener);
  if (error == 0 && listener.listening.empty()) error = EADDRNOTAVAIL;
  if (error == 0) return std::nullopt;
  return OpenFailure{error == EADDRINUSE ? kTelephonyLineInUse : kTelephonyDeviceFailed,
                     "cannot listen on " + text + ": " + ErrorWords(error)};
}

int SipTransports::AddNewAddresses(Listener& listener) {
  for (const sa& address : ExpandListenAddress(listener.address)) {
    const bool known = std::any_of(listener.listening.begin(), listener.listening.end(),
                                   [&address](const sa& one) { return sa_cmp(&one, &address, SA_ALL); });
    if (known) continue;
    if (const int error = Add(listener, address); error != 0) return error;
    listener.listening.push_back(address);
  }
  return 0;
}

int SipTransports::Add(const Listener& listener, const sa& address) {
  if (listener.secure) return sip_transp_add(stack_, SIP_TRANSP_TLS, &address, own_tls_->Get());
  const int error = sip_transp_add(stack_, SIP_TRANSP_UDP, &address);
  if (error == 0) ProbeSocket(*stack_, address);
  return error != 0 ? error : sip_transp_add(stack_, SIP_TRANSP_TCP, &address);
}

/// Only to reach the account's server: the port is any free one, and nobody is told of it.
int SipTransports::AddWayToServer(const sa& address) {
  sa local = address;
  sa_set_port(&local, 0);
  return sip_transp_add(stack_, SIP_TRANSP_TLS, &local, server_tls_->Get());
}

}  // namespace orven
