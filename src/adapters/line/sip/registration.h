// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "adapters/line/sip/digest_login.h"
#include "adapters/line/sip/libre.h"
#include "adapters/line/sip/network_watch.h"
#include "adapters/line/sip/server_lookup.h"
#include "adapters/line/sip/server_path.h"
#include "adapters/line/sip/server_trouble.h"
#include "adapters/line/sip/sip_line_settings.h"

namespace orven {

/// Keeps an account registered (RFC 3261, section 10), so that its calls come here: refreshes a registration
/// well before it ends, and retries after a failure with growing pauses. SIP thread.
class Registration {
 public:
  struct Ports {
    /// The stack from which requests to a server are sent; nullptr: there is no route.
    std::function<sip*(const ServerAddress& server)> towards;
    /// Why the certificate of the latest server was not accepted; empty when it was, or there is none.
    std::function<std::string()> refusal;
    /// Each change of the registration's state.
    std::function<void(const RegistrationNews&)> news;
  };

  /// `account` is one of the line's `settings` and usable; see ProblemOf.
  Registration(const SipLineSettings& settings, const SipAccount& account, Ports ports);
  Registration(const Registration&) = delete;
  Registration& operator=(const Registration&) = delete;
  ~Registration();

  /// Looks up the server and registers there.
  void Start();

  /// The computer's network has changed. Registers at once if that helps.
  void NetworkChanged(NetworkChange change);

  /// Stops using `stack`, which is about to be destroyed.
  void Leave(const sip& stack);

  /// Removes the registration without waiting for the server's answer. Nothing is sent afterwards.
  void End();

  /// The user of the account's address.
  const std::string& User() const { return address_.user; }

  /// Whether `source` is an address of the account's servers.
  bool IsServer(const sa& source) const;

  /// The SIP URI at which the account's server reaches us through a router. Empty when `invite` came from
  /// elsewhere or there is no router.
  std::string PublicContact(const sip_msg& invite) const;

 private:
  /// Sends a request to the server of the list whose turn it is, or to the next that can be reached; after a
  /// failure retries later.
  void Ask(std::chrono::seconds life);
  void Again();
  void CancelRequest();
  /// An errno value, or 0.
  int Send(std::chrono::seconds life);
  void Prefer(std::vector<ServerAddress> servers);
  bool NextServer();
  void GiveUpServer();
  void PathBroke();
  LineTrouble Unreachable(int error) const;
  int WriteContact(sip_transp transport, const sa& source, mbuf& request);

  void TakeResponse(int error, const sip_msg* response);
  void TakeChallenge(const sip_msg& response);
  void TakeTooBrief(const sip_msg& response);
  void Registered(const sip_msg& response);
  /// Reports the failure and waits: for `pause` or, without one, longer after each failure. `status` is that
  /// of the server's answer and `error` an errno value, or 0.
  void RetryLater(const LineTrouble& trouble, int status, int error, std::chrono::milliseconds pause = {});
  /// The same for an answer of the server, which may ask for another pause.
  void TakeRefusal(const sip_msg& refusal, const std::string& more = "",
                   std::chrono::milliseconds pause = {});

  const SipLineSettings& settings_;
  const SipAccount& account_;
  const SipAddress address_;
  const std::string user_;  ///< the URI of the address
  const Ports ports_;
  const ServerTrouble trouble_;
  const std::string call_id_;   ///< the same for all requests (RFC 3261, section 10.2), and our tag
  const std::string instance_;  ///< as of InstanceOf
  DigestLogin login_;
  ServerLookup lookup_;
  ServerPath path_;
  std::vector<ServerAddress> servers_;  ///< in the order of the tries
  std::size_t server_ = 0;              ///< of `servers_`: in use, or of the latest try
  sip* stack_ = nullptr;                ///< of the latest request
  std::uint32_t sequence_ = 0;
  struct sip_request* request_ = nullptr;  ///< pending; the library clears it when answered
  MonotonicTimer timer_;
  MonotonicTimer patience_;             ///< with the server that is asked
  std::chrono::seconds life_;           ///< the lifetime that we ask for
  std::chrono::seconds asked_{0};       ///< in the latest request
  std::chrono::milliseconds retry_{0};  ///< the latest pause that was not asked for; 0: no failure yet

  sa own_{};             ///< from where the latest request left
  sa seen_{};            ///< as the server sees us, when there is a router; else unset
  std::string contact_;  ///< in the latest request
  std::string bound_;    ///< registered at the server; empty when none is
  int too_brief_ = 0;    ///< 423 answers in a row
  bool moved_ = false;   ///< registered again under another address, since the latest pause
  bool registered_ = false;
  bool refused_ = false;                           ///< the latest failure was an answer of the server
  std::string told_;                               ///< the failure that was reported; empty while it works
  std::chrono::steady_clock::time_point started_;  ///< the latest try
};

}  // namespace orven
