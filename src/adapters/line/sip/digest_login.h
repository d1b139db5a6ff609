// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "adapters/line/sip/libre.h"

namespace orven {

/// Proves a password to a server and to proxies before it by digest (RFC 3261, section 22; SHA-256 and
/// SHA-512-256 by RFC 8760). SIP thread.
class DigestLogin {
 public:
  enum class Verdict : std::uint8_t {
    kAnswer,      ///< ask again: Headers has the answer
    kRefused,     ///< user or password is wrong
    kNoWayKnown,  ///< none of the ways to prove it is known here
  };

  DigestLogin(std::string user, std::string password)
      : user_(std::move(user)), password_(std::move(password)) {}

  /// Takes a 401 or 407. Of several challenges of one realm the first that we can answer counts.
  Verdict Take(const sip_msg& response);

  /// The header lines for the next request; empty when nobody has asked yet. Each answers only once.
  std::string Headers(std::string_view method, std::string_view uri);

  /// What was answered last was right: the next challenge is only a new question.
  void Accepted();

  /// Forgets all challenges.
  void Reset() { challenges_.clear(); }

 private:
  struct Challenge {
    sip_hdrid header;
    std::string realm, nonce, opaque, algorithm;
    bool qop;             ///< "auth" is offered; else as in RFC 2069
    bool stale;           ///< the answer before was right, but too old
    std::uint32_t count;  ///< answers with this nonce
    int unproven;         ///< answers since the latest that was right, whatever the nonce
  };

  static bool Understand(const sip_hdr& header, Challenge& challenge);
  Challenge* Find(const Challenge& like);
  Verdict Take(const Challenge& asked);
  std::string Header(Challenge& challenge, std::string_view method, std::string_view uri) const;

  const std::string user_;
  const std::string password_;
  std::vector<Challenge> challenges_;  ///< at most one of a realm and header
};

}  // namespace orven
