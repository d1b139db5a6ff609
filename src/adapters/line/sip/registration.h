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

/// Keeps an account registered (RFC 3261, section 10), so that its calls come here: asks again well
/// before a registration ends, and after a failure with growing waits. SIP thread.
class Registration {
 public:
  /// The stack that requests to a server leave from; nullptr: there is no way there.
  using Towards = std::function<sip*(const sa& server)>;

  /// `settings.account` must be a usable SIP address; see AccountProblem. `refusal` tells why the latest
  /// server did not prove who it is; empty when it did, or need not.
  Registration(const SipLineSettings& settings, Towards towards, std::function<std::string()> refusal);
  Registration(const Registration&) = delete;
  Registration& operator=(const Registration&) = delete;
  ~Registration();

  /// Looks for the server anew and registers there.
  void Start();

  /// The computer's network has changed; `moved`: its addresses have. Registers at once where that is of use.
  void NetworkChanged(bool moved);

  /// Uses nothing of `stack` any more, which is about to go.
  void Leave(const sip& stack);

  /// Takes the registration back; the server's answer is not waited for. Nothing is sent afterwards.
  void End();

  /// The address at which the server that sent `invite` reaches us through a router, as a SIP URI. Empty
  /// when it came from elsewhere or there is no router.
  std::string PublicContact(const sip_msg& invite) const;

 private:
  /// Sends a request to the first server that can be asked, and after a failure tries again later.
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
  /// Tells the failure and waits: for `pause` or, without one, longer after each failure.
  void RetryLater(const RegistrationNews& failure, std::chrono::milliseconds pause = {});
  /// The same for an answer of the server, which may demand another pause.
  void TakeRefusal(const sip_msg& refusal, const std::string& more = "",
                   std::chrono::milliseconds pause = {});

  const SipLineSettings& settings_;
  const SipAccount account_;
  const Towards towards_;
  const std::function<std::string()> refusal_;
  const std::string call_id_;  ///< the same for all requests (RFC 3261, section 10.2), and our tag
  DigestLogin login_;
  ServerLookup lookup_;
  std::vector<sa> servers_;  ///< that may still be asked; the first is, or was
  sip* stack_ = nullptr;     ///< of the latest request
  std::uint32_t sequence_ = 0;
  sip_keepalive* connection_ = nullptr;    ///< watched; the library clears it when it is gone
  struct sip_request* request_ = nullptr;  ///< under way; the library clears it when answered
  MonotonicTimer timer_;
  MonotonicTimer keep_alive_timer_;
  std::chrono::seconds life_;      ///< that we ask for
  std::chrono::seconds asked_{0};  ///< in the latest request
  std::chrono::milliseconds retry_;

  sa own_{};             ///< from where the latest request left
  sa seen_{};            ///< at which the server sees us instead; unset when there is no router
  std::string contact_;  ///< in the latest request
  std::string bound_;    ///< which the server keeps; empty when it keeps none
  int too_brief_ = 0;    ///< refused lives in a row
  bool moved_ = false;   ///< registered again for another address, since the latest wait
  bool registered_ = false;
  bool refused_ = false;                           ///< by the server, latest
  std::string told_;                               ///< why it failed, as the log says; empty while it works
  std::chrono::steady_clock::time_point started_;  ///< the latest try
};

}  // namespace orven
