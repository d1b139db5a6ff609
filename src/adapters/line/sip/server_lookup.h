// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "adapters/line/sip/libre.h"

namespace orven {

/// A server as an account names it.
struct ServerName {
  std::string host;        ///< a name or an address
  std::uint16_t port = 0;  ///< 0: that of the name's SRV records (RFC 3263, section 4), else the usual one
  std::string transport;   ///< udp, tcp or tls
  int family = AF_INET;    ///< of the addresses wanted
};

/// Finds a server's addresses with the computer's resolver, as it is configured at that moment. That may take
/// long, so each search has its own thread; the result of a cancelled search is dropped. SIP thread.
class ServerLookup {
 public:
  /// The addresses with their ports, the best first; empty when the name is unknown.
  using Found = std::function<void(std::vector<sa> addresses)>;

  ServerLookup();
  ServerLookup(const ServerLookup&) = delete;
  ServerLookup& operator=(const ServerLookup&) = delete;
  ~ServerLookup();

  /// Calls `found` later, or at once when there is nothing to search for. Cancels an earlier search.
  void Find(const ServerName& server, Found found);

  void GiveUp();

 private:
  struct Shared;

  bool Begin();
  static void Answered(int id, void* data, void* self);

  std::shared_ptr<Shared> shared_;
  LibrePtr<mqueue> queue_;
  Found found_;
};

}  // namespace orven
