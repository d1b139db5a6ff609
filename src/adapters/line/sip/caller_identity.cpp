// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/line/sip/caller_identity.h"

#include <algorithm>
#include <charconv>
#include <cstddef>
#include <cstdint>

#include "base/text.h"
#include "base/unicode.h"

namespace orven {
namespace {

/// A name-addr or addr-spec (RFC 3261, section 25.1), parsed here because it accepts malformed names, as
/// telephones send them, which the library's parser refuses.
struct Address {
  std::string name;
  std::string scheme;  ///< in lower case
  std::string user;
  std::string host;
};

std::string DecodePercent(std::string_view text) {
  std::string decoded;
  for (std::size_t i = 0; i < text.size(); ++i) {
    std::uint8_t value = 0;
    const char* hex = text.data() + i + 1;
    if (text[i] == '%' && i + 2 < text.size() && std::from_chars(hex, hex + 2, value, 16).ptr == hex + 2) {
      decoded += static_cast<char>(value);
      i += 2;
    } else {
      decoded += text[i];
    }
  }
  return decoded;
}

/// Removes a quoted string from the beginning of `rest`; `rest` begins with the quote.
std::string TakeQuoted(std::string_view& rest) {
  std::string text;
  std::size_t i = 1;
  while (i < rest.size() && rest[i] != '"') {
    if (rest[i] == '\\' && i + 1 < rest.size()) ++i;
    text += rest[i++];
  }
  rest.remove_prefix(std::min(i + 1, rest.size()));
  return text;
}

void ParseUri(std::string_view uri, Address& address) {
  const auto colon = uri.find(':');
  if (colon == std::string_view::npos) return;
  address.scheme = Lower(uri.substr(0, colon));
  std::string_view rest = uri.substr(colon + 1);
  if (address.scheme == "tel") {
    // The separators have no meaning (RFC 3966, section 3).
    for (const char c : rest.substr(0, rest.find(';'))) {
      if (std::string_view("-.() ").find(c) == std::string_view::npos) address.user += c;
    }
    return;
  }
  if (const auto at = rest.rfind('@'); at != std::string_view::npos) {
    // What follows ":" or ";" is a password or parameters.
    const std::string_view user = rest.substr(0, at);
    address.user = DecodePercent(user.substr(0, user.find_first_of(":;")));
    rest = rest.substr(at + 1);
  }
  address.host = Lower(rest.substr(0, rest.find_first_of(":;?>")));
}

Address Parse(std::string_view value) {
  Address address;
  std::string_view rest = Trimmed(value);
  if (!rest.empty() && rest.front() == '"') {
    address.name = TakeQuoted(rest);
  } else if (const auto bracket = rest.find('<'); bracket != std::string_view::npos) {
    address.name = std::string(Trimmed(rest.substr(0, bracket)));
  }
  if (const auto bracket = rest.find('<'); bracket != std::string_view::npos) {
    rest = rest.substr(bracket + 1);
    rest = rest.substr(0, rest.find('>'));
  } else {
    rest = rest.substr(0, rest.find(';'));
  }
  ParseUri(Trimmed(rest), address);
  address.name = Utf8FromUnknown(Trimmed(address.name));
  address.user = Utf8FromUnknown(address.user);
  return address;
}

bool IsAnonymous(const Address& address) {
  return Lower(address.user) == "anonymous" || address.host == "anonymous.invalid" ||
         Lower(address.name) == "anonymous";
}

/// "id" withholds the asserted identity (RFC 3325, section 9.3), "user" what the telephone sends.
bool IsWithheld(std::string_view privacy) {
  std::string values = ";" + Lower(privacy) + ";";
  std::erase(values, ' ');
  return values.find(";id;") != std::string::npos || values.find(";user;") != std::string::npos;
}

}  // namespace

CallerIdentity Identify(const IdentityHeaders& headers) {
  if (IsWithheld(headers.privacy)) return {};
  std::vector<Address> addresses;
  for (const std::string_view value : headers.asserted) addresses.push_back(Parse(value));
  std::erase_if(addresses, [](const Address& address) { return address.scheme.empty(); });
  if (addresses.empty()) addresses.push_back(Parse(headers.from));
  if (std::any_of(addresses.begin(), addresses.end(), IsAnonymous)) return {};
  CallerIdentity caller;
  for (const Address& address : addresses) {
    if (caller.number.empty()) caller.number = address.user;
    if (caller.name.empty()) caller.name = address.name;
  }
  return caller;
}

}  // namespace orven
