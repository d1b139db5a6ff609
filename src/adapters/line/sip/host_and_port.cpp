// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/line/sip/host_and_port.h"

#include <arpa/inet.h>

#include <algorithm>
#include <array>
#include <cctype>

#include "base/conversions.h"

namespace orven {
namespace {

using Kind = HostAndPort::Kind;

bool IsNumeric(int family, std::string_view text) {
  std::array<unsigned char, sizeof(in6_addr)> address{};
  return ::inet_pton(family, std::string(text).c_str(), address.data()) == 1;
}

/// Letters, digits, "-" and ".".
bool IsName(std::string_view text) {
  const auto is_part = [](unsigned char letter) {
    return std::isalnum(letter) != 0 || letter == '-' || letter == '.';
  };
  const std::string_view last = text.substr(text.rfind('.') + 1);
  return std::ranges::all_of(text, is_part) && last.find_first_not_of("0123456789") != last.npos;
}

std::optional<Kind> KindOf(std::string_view host, bool bracketed) {
  if (bracketed) {
    const bool valid = IsNumeric(AF_INET6, host.substr(0, host.find('%'))) && !host.ends_with('%');
    return valid ? std::optional(Kind::kIpv6) : std::nullopt;
  }
  if (IsNumeric(AF_INET, host)) return Kind::kIpv4;
  return IsName(host) ? std::optional(Kind::kName) : std::nullopt;
}

}  // namespace

std::optional<HostAndPort> ParseHostAndPort(std::string_view text) {
  const std::size_t bracket = text.starts_with('[') ? text.find(']') : text.npos;
  const bool bracketed = bracket != text.npos;
  const std::size_t end = bracketed ? bracket + 1 : std::min(text.find(':'), text.size());
  const std::string_view host = bracketed ? text.substr(1, bracket - 1) : text.substr(0, end);
  const auto kind = KindOf(host, bracketed);
  if (!kind) return std::nullopt;
  if (end == text.size()) return HostAndPort{*kind, std::string(host)};
  const auto port = WholeNumber<std::uint16_t>(text.substr(end + 1));
  if (text[end] != ':' || port.value_or(0) == 0) return std::nullopt;
  return HostAndPort{*kind, std::string(host), *port};
}

}  // namespace orven
