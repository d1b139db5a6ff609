// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/mail/mail_settings.h"

#include <algorithm>
#include <cstdint>

#include "base/conversions.h"
#include "base/text.h"
#include "base/unicode.h"

namespace orven {
namespace {

bool IsHost(std::string_view host) {
  if (host.starts_with('[')) {
    return host.size() > 3 && host.find_first_not_of("0123456789abcdefABCDEF:.[") == host.size() - 1 &&
           host.ends_with(']');
  }
  // Letters beyond ASCII are for names in other scripts (RFC 5891).
  return !host.empty() && IsUtf8(host) && std::all_of(host.begin(), host.end(), [](char c) {
    return static_cast<unsigned char>(c) >= 0x80 || (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') ||
           (c >= 'a' && c <= 'z') || c == '-' || c == '.' || c == '_';
  });
}

std::optional<int> PortOf(std::string_view digits) {
  const auto port = WholeNumber<std::uint16_t>(digits);
  return port && *port > 0 ? std::optional<int>(*port) : std::nullopt;
}

}  // namespace

std::optional<MailServer> ParseMailServer(std::string_view text) {
  std::string_view rest = Trimmed(text, " ");
  const bool secure = Lower(rest).starts_with("smtps://");
  const bool scheme = secure || Lower(rest).starts_with("smtp://");
  if (scheme) {
    rest.remove_prefix(rest.find("//") + 2);
    if (rest.ends_with('/')) rest.remove_suffix(1);
  }
  const int usual = secure ? 465 : 25;
  std::optional<int> port = usual;
  const std::size_t bracket = rest.rfind(']');
  const std::size_t colon = rest.find(':', bracket == rest.npos ? 0 : bracket);
  if (colon != rest.npos) port = PortOf(rest.substr(colon + 1));
  const std::string host(rest.substr(0, colon));
  if (!IsHost(host) || !port) return {};
  const std::string number = ":" + std::to_string(*port);
  return MailServer{(secure ? "smtps://" : "smtp://") + host + number, *port == usual ? host : host + number};
}

}  // namespace orven
