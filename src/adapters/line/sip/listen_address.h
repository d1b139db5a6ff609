// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "adapters/line/sip/libre.h"

namespace orven {

/// Where a line waits for calls: a host and a port.
struct ListenAddress {
  enum class Hosts : std::uint8_t {
    kEvery,      ///< "*" or nothing: all addresses of this computer, IPv4 and IPv6
    kEveryIpv4,  ///< "0.0.0.0"
    kEveryIpv6,  ///< "[::]"
    kAddress,    ///< one address; a link-local one with its network: "[fe80::1%eth0]"
    kName,       ///< a name with this computer's addresses
  };
  Hosts hosts = Hosts::kAddress;
  std::string host{};  ///< without brackets
  std::uint16_t port = 0;

  /// Whether the addresses are those that this computer has at the moment.
  bool IsEverywhere() const { return hosts <= Hosts::kEveryIpv6; }
};

/// Reads "192.0.2.1:5060", "[2001:db8::1]:5060", "pc.example.org:5060", "*:5060" and so on; nothing unless
/// the port is from 1 to 65535 and the host may be one. Any thread.
std::optional<ListenAddress> ParseListen(std::string_view text);

/// The addresses with their ports that `listen` means at the moment, externally reachable ones first: of
/// networks that are connected, and without link-local ones unless they are configured. Of a name those among
/// `named` that are this computer's. The SIP library needs them one by one because it sends them to peers.
std::vector<sa> PresentAddresses(const ListenAddress& listen, const std::vector<sa>& named);

/// Whether `address` is one of this computer now.
bool HasAddress(const sa& address);

/// Whether this computer has an address now at which others could reach it.
bool HasNetwork();

/// The addresses of the name in `listen`, from the computer's resolver, waited for no longer than half a
/// second: the names in /etc/hosts and of a local network need less. Empty when there is no answer by then.
std::vector<sa> LookUpSoon(const ListenAddress& listen);

}  // namespace orven
