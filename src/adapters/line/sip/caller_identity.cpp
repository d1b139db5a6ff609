// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/line/sip/caller_identity.h"

#include <algorithm>
#include <cctype>
#include <charconv>
#include <cstddef>
#include <cstdint>

namespace orven {
namespace {

/// A header value taken apart: name-addr or addr-spec (RFC 3261, section 25.1).
struct Address {
  std::string name;
  std::string scheme;  ///< in small letters
  std::string user;
  std::string host;
};

std::string Lower(std::string_view text) {
  std::string lower(text);
  std::transform(lower.begin(), lower.end(), lower.begin(),
                 [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
  return lower;
}

std::string_view Trim(std::string_view text) {
  const auto first = text.find_first_not_of(" \t\r\n");
  if (first == std::string_view::npos) return {};
  return text.substr(first, text.find_last_not_of(" \t\r\n") - first + 1);
}

/// Length of the UTF-8 sequence at the beginning of `text` (RFC 3629), 0 when it is none.
std::size_t SequenceLength(std::string_view text) {
  const auto byte = [text](std::size_t i) { return static_cast<unsigned char>(text[i]); };
  const unsigned char lead = byte(0);
  if (lead < 0x80) return 1;
  const std::size_t length = lead >= 0xC2 && lead < 0xE0 ? 2 : lead < 0xF0 ? 3 : lead < 0xF5 ? 4 : 0;
  if (lead < 0xC2 || length == 0 || text.size() < length) return 0;
  for (std::size_t i = 1; i < length; ++i) {
    if ((byte(i) & 0xC0) != 0x80) return 0;
  }
  const bool overlong = (lead == 0xE0 && byte(1) < 0xA0) || (lead == 0xF0 && byte(1) < 0x90);
  const bool beyond = (lead == 0xED && byte(1) >= 0xA0) || (lead == 0xF4 && byte(1) >= 0x90);
  return overlong || beyond ? 0 : length;
}

bool IsUtf8(std::string_view text) {
  while (!text.empty()) {
    const std::size_t length = SequenceLength(text);
    if (length == 0) return false;
    text.remove_prefix(length);
  }
  return true;
}

/// Texts that are no UTF-8 come from old telephones, which send ISO 8859-1.
std::string ToUtf8(std::string text) {
  if (IsUtf8(text)) return text;
  std::string utf8;
  for (const char c : text) {
    const auto byte = static_cast<unsigned char>(c);
    if (byte < 0x80) {
      utf8 += c;
    } else {
      utf8 += static_cast<char>(0xC0 | (byte >> 6));
      utf8 += static_cast<char>(0x80 | (byte & 0x3F));
    }
  }
  return utf8;
}

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

/// Takes a quoted string off the beginning of `rest`; `rest` begins with the quote.
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
    // The separators are for the eye only (RFC 3966, section 3).
    for (const char c : rest.substr(0, rest.find(';'))) {
      if (std::string_view("-.() ").find(c) == std::string_view::npos) address.user += c;
    }
    return;
  }
  if (const auto at = rest.rfind('@'); at != std::string_view::npos) {
    // What follows ":" or ";" is a password or parameters of the number, no part of it.
    const std::string_view user = rest.substr(0, at);
    address.user = DecodePercent(user.substr(0, user.find_first_of(":;")));
    rest = rest.substr(at + 1);
  }
  address.host = Lower(rest.substr(0, rest.find_first_of(":;?>")));
}

Address Parse(std::string_view value) {
  Address address;
  std::string_view rest = Trim(value);
  if (!rest.empty() && rest.front() == '"') {
    address.name = TakeQuoted(rest);
  } else if (const auto bracket = rest.find('<'); bracket != std::string_view::npos) {
    address.name = std::string(Trim(rest.substr(0, bracket)));
  }
  if (const auto bracket = rest.find('<'); bracket != std::string_view::npos) {
    rest = rest.substr(bracket + 1);
    rest = rest.substr(0, rest.find('>'));
  } else {
    rest = rest.substr(0, rest.find(';'));
  }
  ParseUri(Trim(rest), address);
  address.name = ToUtf8(std::string(Trim(address.name)));
  address.user = ToUtf8(address.user);
  return address;
}

bool IsAnonymous(const Address& address) {
  return Lower(address.user) == "anonymous" || address.host == "anonymous.invalid" ||
         Lower(address.name) == "anonymous";
}

/// "id" hides the asserted identity (RFC 3325, section 9.3), "user" what the telephone tells.
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
