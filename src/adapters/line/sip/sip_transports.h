// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <chrono>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "adapters/line/sip/connection_guard.h"
#include "adapters/line/sip/libre.h"
#include "adapters/line/sip/listen_address.h"
#include "adapters/line/sip/server_lookup.h"
#include "adapters/line/sip/sip_endpoint.h"
#include "adapters/line/sip/sip_line_settings.h"
#include "adapters/line/sip/tls_context.h"
#include "platform/line_driver.h"

namespace orven {

/// The addresses at which a line listens, and its routes to the servers of its accounts. SIP thread.
class SipTransports {
 public:
  struct Events {
    std::function<bool(SipEndpoint&, const sip_msg&)> within;  ///< as of SipEndpoint
    std::function<void(SipEndpoint&, const sip_msg&)> invite;  ///< as of SipEndpoint
    std::function<void()> closed;                              ///< after Close: all transactions are over
    /// An endpoint's address was removed. False: its call has to end first, ask again later; true: it is not
    /// in use.
    std::function<bool(SipEndpoint&)> leaving;
    /// A name in the settings may have other addresses now: Follow should be called.
    std::function<void()> renamed;
  };

  SipTransports(const SipLineSettings& settings, Events events);

  /// Listens at all addresses in `settings`. Nothing on success.
  std::optional<OpenFailure> Start();

  /// Listens at the computer's new addresses and stops at removed ones. Whether there were any.
  bool Follow();

  /// Uses the computer's present name servers for the names within calls, and for the names in `settings`.
  void NamesChanged();

  /// The endpoint from which requests to `server` of `account` are sent; nullptr: there is no route.
  SipEndpoint* Towards(const SipAccount& account, const ServerAddress& server);

  /// Protects the connection of the call of `invite` from strangers' connections.
  void Spare(const sip_msg& invite) { guard_.Spare(invite); }

  /// Ends all transactions, then raises `closed`, perhaps at once.
  void Close();

  /// Why calls cannot come in at an address in `settings` now, as of LineEvent::Kind::Trouble; empty when
  /// they can.
  Words Trouble() const;

  /// Why `account` cannot be used, for the log; empty when it can.
  std::string ProblemWith(const SipAccount& account) const;

  /// Why the certificate of the server of `account` was not accepted; empty when it was, or there is none.
  std::string RefusalOf(const SipAccount& account) const;

 private:
  /// One configured address, and the addresses that it currently means.
  struct Listener {
    std::string text;
    ListenAddress listen;
    bool secure = false;
    std::vector<sa> named{};  ///< found by its name
    std::vector<sa> expanded{};
    int error = 0;                           ///< errno value of the latest failure to listen there
    std::unique_ptr<ServerLookup> lookup{};  ///< of its name
  };

  /// A stack at one address. The library has one TLS context for all connections that a stack opens, hence
  /// one stack for calls that come directly, and one for the connections to each server over TLS.
  struct Place {
    std::unique_ptr<SipEndpoint> endpoint;
    const TlsContext* server;  ///< nullptr: for calls that come directly
  };

  std::optional<OpenFailure> PrepareTls();
  void PrepareTlsTo(const std::string& host);
  std::optional<OpenFailure> AddListener(const std::string& text, bool secure);
  std::optional<OpenFailure> Open(Listener& listener);
  void Expand();
  void LookUpNames();
  void ReadNameServers();
  bool IsThere(const SipEndpoint& endpoint) const;
  SipEndpoint* EndpointAt(const sa& address, const TlsContext* server = nullptr) const;
  bool AddPlaces(const sa& address, const Listener*& failed, int& error);
  int AddPlace(const sa& address, const TlsContext* server, const Listener*& failed);
  int ListenAt(const sa& address, SipEndpoint& endpoint, const Listener*& failed);
  bool LeaveGone();
  bool IsOurs(const sa& local) const;

  const SipLineSettings& settings_;
  const Events events_;
  LibrePtr<dnsc> names_;
  std::unique_ptr<TlsContext> own_tls_;  ///< of `tls_listen`
  std::map<std::string, std::unique_ptr<TlsContext>>
      servers_tls_;                                  ///< of the accounts' servers, by their names
  std::map<std::string, std::string> tls_problems_;  ///< of those without a context, likewise
  std::vector<Listener> listeners_;
  std::vector<Place> places_;
  ConnectionGuard guard_;
  std::chrono::steady_clock::time_point looked_up_;  ///< the names in the settings
  std::size_t closing_ = 0;                          ///< endpoints with open transactions
};

}  // namespace orven
