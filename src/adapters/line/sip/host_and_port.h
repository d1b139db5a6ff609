// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace orven {

/// A computer as settings name it, and perhaps a port.
struct HostAndPort {
  enum class Kind : std::uint8_t { kIpv4, kIpv6, kName };
  Kind kind = Kind::kName;
  std::string host{};      ///< without brackets
  std::uint16_t port = 0;  ///< 0: none given
};

/// Reads "192.0.2.1:5060", "[2001:db8::1]", "[fe80::1%eth0]:5060", "pc.example.org" and so on; nothing unless
/// the port is from 1 to 65535 and the host may be one. A name's last part is not a number (RFC 3261, section
/// 25.1), so that a mistyped address is not taken for a name.
std::optional<HostAndPort> ParseHostAndPort(std::string_view text);

}  // namespace orven
