// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/line/config/line_keys.h"

#include <arpa/inet.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <optional>

#include "adapters/line/config/codec_list.h"
#include "adapters/line/sip/listen_address.h"
#include "adapters/line/sip/sip_account.h"

namespace orven {
namespace {

/// Seconds between two Ring events.
constexpr double kShortestRing = 1;
constexpr double kLongestRing = 60;

/// A day.
constexpr int kLongestIdle = 86400;

bool IsDigit(char letter) {
  return letter >= '0' && letter <= '9';
}

/// A whole number of one to five digits.
std::optional<int> Number(std::string_view text) {
  if (text.empty() || text.size() > 5 || !std::all_of(text.begin(), text.end(), IsDigit)) return std::nullopt;
  int number = 0;
  std::from_chars(text.data(), text.data() + text.size(), number);
  return number;
}

bool IsPort(std::string_view text) {
  const auto number = Number(text);
  return number && *number >= 1 && *number <= 65535;
}

bool IsIpv6(std::string_view text) {
  in6_addr address{};
  return ::inet_pton(AF_INET6, std::string(text).c_str(), &address) == 1;
}

bool IsListen(std::string_view value) {
  return ParseListen(value).has_value();
}

bool IsHost(std::string_view text) {
  return !text.empty() && std::all_of(text.begin(), text.end(), [](char letter) {
    const bool is_letter = (letter >= 'a' && letter <= 'z') || (letter >= 'A' && letter <= 'Z');
    return is_letter || IsDigit(letter) || letter == '.' || letter == '-';
  });
}

/// A name or an address, IPv6 in brackets, perhaps with a port.
bool IsServer(std::string_view text) {
  const std::size_t bracket = text.starts_with('[') ? text.find(']') : text.npos;
  const bool is_ipv6 = bracket != text.npos && IsIpv6(text.substr(1, bracket - 1));
  const std::size_t end = is_ipv6 ? bracket + 1 : std::min(text.find(':'), text.size());
  if (!is_ipv6 && !IsHost(text.substr(0, end))) return false;
  return end == text.size() || (text[end] == ':' && IsPort(text.substr(end + 1)));
}

bool IsAccount(std::string_view value) {
  if (!value.starts_with("sip:")) return false;
  value.remove_prefix(value.find(':') + 1);
  const std::size_t at = value.find('@');
  if (at == value.npos || at == 0 || value.find_first_of(" \t<>\"") < at) return false;
  return IsServer(value.substr(at + 1));
}

bool IsYesOrNo(std::string_view value) {
  return value == "yes" || value == "no";
}

bool IsCodecs(std::string_view value) {
  return !ReadCodecs(value).empty();
}

bool IsRingTime(std::string_view value) {
  double seconds = 0;
  const char* end = value.data() + value.size();
  const auto [stop, error] = std::from_chars(value.data(), end, seconds, std::chars_format::fixed);
  return error == std::errc() && stop == end && seconds >= kShortestRing && seconds <= kLongestRing;
}

bool IsIdleTime(std::string_view value) {
  const auto seconds = Number(value);
  return seconds && *seconds <= kLongestIdle;
}

bool IsText(std::string_view value) {
  return !value.empty();
}

using L = TelephoneLine;

constexpr bool kRequired = true;
constexpr bool kSecret = true;
constexpr bool kPerAccount = true;

constexpr LineKey kIdleSeconds{"idle_seconds", IsIdleTime,
                               "a whole number of seconds up to 86400, 0 for never"};

constexpr std::array kSipKeys{
    LineKey{
        "listen", IsListen,
        "an address or a name and a port, like 192.168.1.5:5060, [::1]:5060, pc.example.org:5060 or *:5060",
        &L::listen, "txtListen", "The address for calls", kRequired},
    LineKey{"account",
            IsAccount,
            "an address like sip:100@example.org",
            nullptr,
            {},
            "",
            !kRequired,
            !kSecret,
            kPerAccount},
    LineKey{"auth_user", IsText, "a user name", &L::auth_user, "txtAuthUser", "The login name", !kRequired,
            !kSecret, kPerAccount},
    LineKey{"password", IsText, "a password", &L::password, "txtPassword", "The password", !kRequired,
            kSecret, kPerAccount},
    LineKey{"proxy", IsServer, "a server's name or address, perhaps with \":\" and a port", &L::proxy,
            "txtProxy", "The outbound proxy", !kRequired, !kSecret, kPerAccount},
    LineKey{"transport", IsTransport, "udp, tcp, tls or auto", &L::transport, "cmbTransport", "The transport",
            !kRequired, !kSecret, kPerAccount},
    LineKey{"srtp", IsYesOrNo, "yes or no", &L::srtp, "cmbTransport", "The encryption of the sound"},
    LineKey{"codecs", IsCodecs, "a list of pcmu, pcma, g722 and opus, each at most once, with commas"},
    LineKey{"tls_trust", IsText, "the path of a PEM file with certificates", &L::tls_trust, "cmbTransport",
            "The trusted certificates' path"},
    LineKey{"tls_listen", IsListen,
            "an address or a name and a port, like 0.0.0.0:5061, [::1]:5061, pc.example.org:5061 or *:5061"},
    LineKey{"tls_certificate", IsText, "the path of a PEM file with a certificate and its private key"},
    LineKey{"ring_seconds", IsRingTime, "a number of seconds from 1 to 60"},
    kIdleSeconds,
};
constexpr std::array kModemKeys{
    LineKey{"port", IsText, "the serial device of the modem, for example /dev/ttyACM0, or auto", &L::port,
            "cmbPort", "The port", kRequired},
    kIdleSeconds,
};
constexpr std::array kSimKeys{
    LineKey{"script", IsText, "the path of a script", &L::script, "txtScript", "The script"},
    kIdleSeconds,
};
constexpr std::array kTypes{
    LineType{LineKind::Sip, "sip", kSipKeys},
    LineType{LineKind::Modem, "modem", kModemKeys},
    LineType{LineKind::Sim, "sim", kSimKeys},
};

}  // namespace

std::span<const LineType> LineTypes() {
  return kTypes;
}

const LineType& TypeOf(LineKind kind) {
  return *std::ranges::find(kTypes, kind, &LineType::kind);
}

const LineKey* FindKey(const LineType& type, std::string_view name) {
  for (const LineKey& key : type.keys) {
    if (!name.starts_with(key.name)) continue;
    const auto number = std::ranges::find(kAccountNumbers, name.substr(key.name.size()));
    if (number == kAccountNumbers.begin() || (key.per_account && number != kAccountNumbers.end()))
      return &key;
  }
  return nullptr;
}

}  // namespace orven
