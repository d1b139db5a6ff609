// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "adapters/line/sip/connection_guard.h"
#include "adapters/line/sip/libre.h"
#include "adapters/line/sip/sip_endpoint.h"
#include "adapters/line/sip/sip_line_settings.h"
#include "adapters/line/sip/tls_context.h"

namespace orven {

/// Why a line could not be opened.
struct OpenFailure {
  std::int32_t result;  ///< a negative TelephonyResult
  std::string reason;
};

/// The addresses at which a line listens, and its way to the account's server. SIP thread.
class SipTransports {
 public:
  struct Events {
    std::function<void(SipEndpoint&, const sip_msg&)> invite;  ///< as of SipEndpoint
    std::function<void()> closed;                              ///< after Close: nothing is under way any more
    /// An endpoint's address is gone. False: its call is to end first, ask later; true: nobody uses it any
    /// more.
    std::function<bool(SipEndpoint&)> leaving;
  };

  SipTransports(const SipLineSettings& settings, Events events);

  /// Listens at everything that `settings` names. Nothing on success.
  std::optional<OpenFailure> Start();

  /// Listens where the computer has new addresses, and no more where they are gone. Whether any came or went.
  bool Follow();

  /// Takes the computer's name servers of this moment for the names within calls.
  void ReadNameServers();

  /// The endpoint that requests to `server` leave from; nullptr: there is no way there.
  SipEndpoint* Towards(const sa& server);

  /// The call of `invite` is up now: strangers' connections do not push out its own.
  void Spare(const sip_msg& invite) { guard_.Spare(invite); }

  /// Ends all that is under way, then tells so, perhaps at once.
  void Close();

  /// Why the account's server could not prove who it is; empty when it could, or need not.
  std::string ServerRefusal() const { return server_tls_ != nullptr ? server_tls_->Refusal() : ""; }

 private:
  /// One setting that names an address, and what it means at the moment.
  struct Listener {
    std::string text;
    sa address{};  ///< as configured
    bool secure = false;
    std::vector<sa> expanded{};
  };

  std::optional<OpenFailure> PrepareTls();
  std::optional<OpenFailure> AddListener(const std::string& text, bool secure);
  void Expand();
  bool IsThere(const SipEndpoint& endpoint) const;
  SipEndpoint* EndpointAt(const sa& address);
  int AddEndpoint(const sa& address, const Listener*& failed);
  bool LeaveGone();
  bool IsOurs(const sa& local) const;

  const SipLineSettings& settings_;
  const Events events_;
  LibrePtr<dnsc> names_;
  std::unique_ptr<TlsContext> own_tls_;     ///< of `tls_listen`
  std::unique_ptr<TlsContext> server_tls_;  ///< of the account
  std::vector<Listener> listeners_;
  std::vector<std::unique_ptr<SipEndpoint>> endpoints_;
  ConnectionGuard guard_;
  std::size_t closing_ = 0;  ///< endpoints that have something under way
};

}  // namespace orven
