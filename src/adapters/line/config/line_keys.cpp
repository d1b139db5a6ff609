// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/line/config/line_keys.h"

#include <algorithm>
#include <array>
#include <charconv>

#include "adapters/line/config/codec_list.h"
#include "adapters/line/sip/listen_address.h"
#include "adapters/line/sip/sip_account.h"
#include "base/conversions.h"

namespace orven {
namespace {

/// Seconds between two Ring events.
constexpr double kShortestRing = 1;
constexpr double kLongestRing = 60;

/// A day.
constexpr unsigned kLongestIdle = 86400;

bool IsListen(std::string_view value) {
  return ParseListen(value).has_value();
}

bool IsServer(std::string_view value) {
  return ParseServer(value).has_value();
}

bool IsAccount(std::string_view value) {
  return AddressOf({.address = std::string(value)}).has_value();
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
  return WholeNumber<unsigned>(value).value_or(kLongestIdle + 1) <= kLongestIdle;
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
    LineKey{"listen", IsListen,
            Tr("an address or a name and a port, like 192.168.1.5:5060, [::1]:5060, pc.example.org:5060 or "
               "*:5060"),
            &L::listen, "txtListen", Tr("The address for calls"), kRequired},
    LineKey{"account",
            IsAccount,
            "an address like sip:100@example.org",
            nullptr,
            {},
            "",
            !kRequired,
            !kSecret,
            kPerAccount},
    LineKey{"auth_user", IsText, Tr("a user name"), &L::auth_user, "txtAuthUser", Tr("The login name"),
            !kRequired, !kSecret, kPerAccount},
    LineKey{"password", IsText, Tr("a password"), &L::password, "txtPassword", Tr("The password"), !kRequired,
            kSecret, kPerAccount},
    LineKey{"proxy", IsServer, Tr("a server's name or address, perhaps with \":\" and a port"), &L::proxy,
            "txtProxy", Tr("The outbound proxy"), !kRequired, !kSecret, kPerAccount},
    LineKey{"transport", IsTransport, Tr("udp, tcp, tls or auto"), &L::transport, "cmbTransport",
            Tr("The transport"), !kRequired, !kSecret, kPerAccount},
    LineKey{"srtp", IsYesOrNo, Tr("yes or no"), &L::srtp, "cmbTransport", Tr("The encryption of the sound")},
    LineKey{"codecs", IsCodecs, "a list of pcmu, pcma, g722 and opus, each at most once, with commas"},
    LineKey{"tls_trust", IsText, Tr("the path of a PEM file with certificates"), &L::tls_trust,
            "txtTrust", Tr("The trusted certificates' path")},
    LineKey{"tls_listen", IsListen,
            "an address or a name and a port, like 0.0.0.0:5061, [::1]:5061, pc.example.org:5061 or *:5061"},
    LineKey{"tls_certificate", IsText, "the path of a PEM file with a certificate and its private key"},
    LineKey{"ring_seconds", IsRingTime, "a number of seconds from 1 to 60"},
    kIdleSeconds,
};
constexpr std::array kModemKeys{
    LineKey{"port", IsText, Tr("the serial device of the modem, for example /dev/ttyACM0, or auto"), &L::port,
            "cmbPort", Tr("The port"), kRequired},
    kIdleSeconds,
};
constexpr std::array kSimKeys{
    LineKey{"script", IsText, Tr("the path of a script"), &L::script, "txtScript", Tr("The script")},
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
