// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "adapters/line/sip/libre.h"

namespace orven {

/// Proves a password to a server and to the proxies before it by digest authentication (RFC 3261, section 22;
/// SHA-256 and SHA-512-256 by RFC 8760). SIP thread.
class DigestLogin {
 public:
  enum class Verdict : std::uint8_t {
    kAnswer,      ///< send the request again, with Headers
    kRefused,     ///< user or password is wrong, or there are too many realms
    kNoWayKnown,  ///< no algorithm that we support is offered
  };

  DigestLogin(std::string user, std::string password)
      : user_(std::move(user)), password_(std::move(password)) {}

  /// Takes a 401 or 407. Of several challenges of one realm the first that we support counts.
  Verdict Take(const sip_msg& response);

  /// The header lines for the next request; empty without a challenge. Each text is for one request only.
  std::string Headers(std::string_view method, std::string_view uri);

  /// The latest answer was accepted: the next challenge does not mean that the password is wrong.
  void Accepted();

  /// Forgets all challenges.
  void Reset() { challenges_.clear(); }

 private:
  struct Challenge {
    sip_hdrid header;
    std::string realm, nonce, opaque, algorithm;
    bool qop;             ///< "auth" is offered; else as in RFC 2069
    bool stale;           ///< the previous answer was right, but its nonce too old
    std::uint32_t count;  ///< answers with this nonce
    int unproven;         ///< answers since the latest accepted one, with any nonce
  };

  static std::optional<Challenge> Understand(const sip_hdr& header);
  static Challenge* Find(std::vector<Challenge>& among, const Challenge& like);
  Verdict Take(const Challenge& asked);
  std::string Header(Challenge& challenge, std::string_view method, std::string_view uri) const;

  const std::string user_;
  const std::string password_;
  std::vector<Challenge> challenges_;  ///< at most one of a realm and header
};

}  // namespace orven
