// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/line/sip/info_digit.h"

#include <algorithm>
#include <cctype>
#include <cstddef>
#include <string>

namespace orven {
namespace {

constexpr std::string_view kKeys = "0123456789*#ABCD";

std::string Upper(std::string_view text) {
  std::string upper(text);
  std::transform(upper.begin(), upper.end(), upper.begin(),
                 [](unsigned char c) { return static_cast<char>(std::toupper(c)); });
  return upper;
}

std::string_view Trim(std::string_view text) {
  const auto first = text.find_first_not_of(" \t\r\n");
  if (first == std::string_view::npos) return {};
  return text.substr(first, text.find_last_not_of(" \t\r\n") - first + 1);
}

std::optional<char> Key(std::string_view text) {
  if (text.size() == 1 && kKeys.find(text[0]) != std::string_view::npos) return text[0];
  if (text.size() != 2 || text[0] != '1' || text[1] < '0' || text[1] > '5') return std::nullopt;
  return kKeys[static_cast<std::size_t>(10 + text[1] - '0')];
}

}  // namespace

std::optional<char> DigitOfInfo(std::string_view body) {
  const std::string upper = Upper(body);
  std::string_view rest = upper;
  if (const auto signal = rest.find("SIGNAL"); signal != std::string_view::npos) {
    rest.remove_prefix(signal + 6);
    const auto equals = rest.find_first_not_of(" \t");
    if (equals == std::string_view::npos || rest[equals] != '=') return std::nullopt;
    rest = rest.substr(equals + 1);
    rest = rest.substr(0, rest.find_first_of("\r\n"));
  }
  return Key(Trim(rest));
}

}  // namespace orven
