// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "adapters/line/sip/libre.h"

namespace orven {

/// A server as an account names it.
struct ServerName {
  std::string host;        ///< a name or an address, without brackets
  std::uint16_t port = 0;  ///< 0: that of the name's SRV records, else the usual one
  std::string transport;   ///< udp, tcp, tls; or auto: as the name's NAPTR and SRV records say
};

/// Where a server is reached, and how: udp, tcp or tls.
struct ServerAddress {
  sa address{};
  std::string transport;

  bool operator==(const ServerAddress& other) const {
    return transport == other.transport && sa_cmp(&address, &other.address, SA_ALL);
  }
};

/// The address of a server that is named by its address; nothing to ask for. Empty for a name.
std::vector<ServerAddress> ServersAt(const ServerName& server);

/// The addresses of `server` in the order in which they are to be tried (RFC 3263, section 4), from the
/// computer's resolver as it is configured at this moment: NAPTR, then SRV by priority and weight (RFC 2782),
/// then both families' addresses. Empty when the name is unknown. May block for half a minute. Any thread.
std::vector<ServerAddress> FindServers(const ServerName& server);

}  // namespace orven
