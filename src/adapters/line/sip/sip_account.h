// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "adapters/line/sip/host_and_port.h"
#include "adapters/line/sip/server_records.h"

namespace orven {

/// An account at which a line registers.
struct SipAccount {
  std::string address;      ///< "sip:user@domain", perhaps with ":" and a port
  std::string auth_user{};  ///< empty: the address's user
  std::string password{};
  std::string transport = "udp";  ///< towards its server: udp, tcp or tls; auto: as the server's name says
  std::string proxy{};            ///< a server, perhaps with a port, to which everything is sent; or empty
};

/// The parts of an account's address.
struct SipAddress {
  std::string user;
  std::string host;        ///< a name or an address, without brackets
  std::uint16_t port = 0;  ///< 0: none given
};

/// Reads a server's name or address, IPv6 in brackets, perhaps with ":" and a port.
std::optional<HostAndPort> ParseServer(std::string_view text);

/// Nothing unless the account's address is usable: its user has no blanks, "<", ">" and quotes.
std::optional<SipAddress> AddressOf(const SipAccount& account);

/// Whether `transport` may be an account's.
bool IsTransport(std::string_view transport);

/// What is wrong with `account`, for the log; empty when it is usable.
std::string ProblemOf(const SipAccount& account);

/// The server to which requests are sent, as written in the account, perhaps with a port.
std::string WrittenServer(const SipAccount& account);

/// The server to which requests of a usable account are sent: its proxy, or that of its address.
ServerName ServerOf(const SipAccount& account);

/// A host as it is written in a URI: IPv6 addresses in brackets.
std::string HostInUri(const std::string& host);

/// The URN that names this line to the servers of `account` as long as the program is installed (RFC 5626,
/// section 4.1). It is made from the computer's identity (machine-id(5)), which it does not reveal, and
/// `installation`.
std::string InstanceOf(const SipAccount& account, const std::string& installation);

}  // namespace orven
