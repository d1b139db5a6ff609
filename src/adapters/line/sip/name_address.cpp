// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/line/sip/name_address.h"

#include <algorithm>
#include <cstddef>

#include "base/text.h"
#include "base/unicode.h"

namespace orven {
namespace {

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

/// Removes what begins with the first of `marks` from the end of `text`.
std::string_view TakeFrom(std::string_view& text, std::string_view marks) {
  const auto at = std::min(text.find_first_of(marks), text.size());
  const auto taken = text.substr(at);
  text = text.substr(0, at);
  return taken;
}

void ReadUri(std::string_view uri, NameAddress& address) {
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
    const std::string_view name = user.substr(0, user.find_first_of(":;"));
    address.user = PercentDecoded(name).value_or(std::string(name));
    rest = rest.substr(at + 1);
  }
  const auto headers = TakeFrom(rest, "?");
  address.uri_headers = headers.substr(headers.empty() ? 0 : 1);
  address.uri_parameters = TakeFrom(rest, ";");
  address.host = Lower(rest.substr(0, rest.find_first_of(":>")));
}

/// Adds the values of a header to `found`. The library separates those of some headers only.
void AddValues(std::string_view values, std::vector<std::string_view>& found) {
  bool quoted = false, enclosed = false;
  std::size_t begin = 0;
  for (std::size_t i = 0; i < values.size(); ++i) {
    const char c = values[i];
    if (quoted && c == '\\') {
      ++i;
    } else if (c == '"') {
      quoted = !quoted;
    } else if (!quoted && (c == '<' || c == '>')) {
      enclosed = c == '<';
    } else if (!quoted && !enclosed && c == ',') {
      found.push_back(values.substr(begin, i - begin));
      begin = i + 1;
    }
  }
  found.push_back(values.substr(begin));
}

}  // namespace

NameAddress ReadNameAddress(std::string_view value) {
  NameAddress address;
  std::string_view rest = Trimmed(value);
  if (!rest.empty() && rest.front() == '"') {
    address.name = TakeQuoted(rest);
  } else if (const auto bracket = rest.find('<'); bracket != std::string_view::npos) {
    address.name = std::string(Trimmed(rest.substr(0, bracket)));
  }
  if (const auto bracket = rest.find('<'); bracket != std::string_view::npos) {
    rest = rest.substr(bracket + 1);
    const auto behind = TakeFrom(rest, ">");
    address.parameters = behind.substr(behind.empty() ? 0 : 1);
  } else {
    address.parameters = TakeFrom(rest, ";");
  }
  ReadUri(Trimmed(rest), address);
  address.name = Utf8FromUnknown(Trimmed(address.name));
  address.user = Utf8FromUnknown(address.user);
  return address;
}

std::vector<std::string_view> AddressesIn(const sip_msg& message, const char* name) {
  std::vector<std::string_view> found;
  const auto add = [](const sip_hdr* header, const sip_msg*, void* list) {
    AddValues(View(header->val), *static_cast<std::vector<std::string_view>*>(list));
    return false;
  };
  sip_msg_xhdr_apply(&message, true, name, add, &found);
  return found;
}

std::string ParameterIn(std::string_view parameters, std::string_view name) {
  for (const std::string& one : Split(Lower(parameters), ';')) {
    const auto equals = std::min(one.find('='), one.size());
    if (Trimmed(std::string_view(one).substr(0, equals)) != name || equals == one.size()) continue;
    return std::string(Trimmed(std::string_view(one).substr(equals + 1), " \t\""));
  }
  return {};
}

}  // namespace orven
