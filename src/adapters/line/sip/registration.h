// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "adapters/line/sip/digest_login.h"
#include "adapters/line/sip/libre.h"
#include "adapters/line/sip/server_lookup.h"
#include "adapters/line/sip/sip_line_settings.h"

namespace orven {

/// Keeps an account registered (RFC 3261, section 10), so that its calls come here: refreshes a registration
/// well before it ends, and retries after a failure with growing pauses. SIP thread.
class Registration {
 public:
  /// The stack from which requests to a server are sent; nullptr: there is no route.
  using Towards = std::function<sip*(const sa& server)>;

  /// `settings.account` must be a usable SIP address; see AccountProblem. `refusal` tells why the certificate
  /// of the latest server was not accepted; empty when it was, or there is none.
  Registration(const SipLineSettings& settings, Towards towards, std::function<std::string()> refusal);
  Registration(const Registration&) = delete;
  Registration& operator=(const Registration&) = delete;
  ~Registration();

  /// Looks up the server and registers there.
  void Start();

  /// The computer's network has changed; `moved`: its addresses have. Registers at once if that helps.
  void NetworkChanged(bool moved);

  /// Stops using `stack`, which is about to be destroyed.
  void Leave(const sip& stack);

  /// Removes the registration without waiting for the server's answer. Nothing is sent afterwards.
  void End();

  /// Whether `source` is an address of the account's server.
  bool IsServer(const sa& source) const;

  /// The SIP URI at which the account's server reaches us through a router. Empty when `invite` came from
  /// elsewhere or there is no router.
  std::string PublicContact(const sip_msg& invite) const;

 private:
  /// Sends a request to the first server that can be reached; after a failure retries later.
  void Ask(std::chrono::seconds life);
  /// An errno value, or 0.
  int Send(std::chrono::seconds life);
  void Prefer(std::vector<sa> servers);
  bool NextServer();
  int WriteContact(sip_transp transport, const sa& source, mbuf& request);

  void TakeResponse(int error, const sip_msg* response);
  void TakeChallenge(const sip_msg& response);
  void TakeTooBrief(const sip_msg& response);
  void TakePublicAddress(const sip_msg& response);
  void Registered(const sip_msg& response);
  void KeepReachable(const sip_msg& response);
  void SendKeepAlive();
  /// Reports the failure and waits: for `pause` or, without one, longer after each failure.
  void RetryLater(const RegistrationNews& failure, std::chrono::milliseconds pause = {});
  /// The same for an answer of the server, which may ask for another pause.
  void TakeRefusal(const sip_msg& refusal, const std::string& more = "",
                   std::chrono::milliseconds pause = {});

  const SipLineSettings& settings_;
  const SipAccount account_;
  const Towards towards_;
  const std::function<std::string()> refusal_;
  const std::string call_id_;  ///< the same for all requests (RFC 3261, section 10.2), and our tag
  DigestLogin login_;
  ServerLookup lookup_;
  std::vector<sa> servers_;  ///< not yet tried, after the first, which is in use
  sip* stack_ = nullptr;     ///< of the latest request
  std::uint32_t sequence_ = 0;
  sip_keepalive* connection_ = nullptr;    ///< watched; the library clears it when it is closed
  struct sip_request* request_ = nullptr;  ///< pending; the library clears it when answered
  MonotonicTimer timer_;
  MonotonicTimer keep_alive_timer_;
  std::chrono::seconds life_;      ///< the lifetime that we ask for
  std::chrono::seconds asked_{0};  ///< in the latest request
  std::chrono::milliseconds retry_;

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
