// SPDX-License-Identifier: GPL-3.0-or-later
#include "actions/mail_address.h"

#include <algorithm>
#include <string_view>

namespace orven {
namespace {

constexpr std::size_t kShortest = 6;
constexpr std::string_view kRefused = "!#$%^&*()=+{}[]|\\;:'/?>,< ";

bool Holds(std::string_view text, std::string_view part) {
  return text.find(part) != std::string_view::npos;
}

/// Looks along the shorter of the two texts, as it has always been done.
bool HoldsRefused(std::string_view text) {
  if (text.size() < kRefused.size()) {
    return std::ranges::any_of(text, [](char letter) { return Holds(kRefused, {&letter, 1}); });
  }
  return std::ranges::any_of(kRefused, [&](char letter) { return Holds(text, {&letter, 1}); });
}

}  // namespace

bool IsMailAddress(const std::string& text) {
  const auto at = text.find('@');
  if (at == std::string::npos || !Holds(text, ".") || text.size() < kShortest) return false;
  const auto domain = std::string_view(text).substr(at + 1);
  if (Holds(domain, "@") || Holds(domain, " ") || !Holds(domain, ".")) return false;
  return !Holds(text, "\"") && !HoldsRefused(text) && !Holds(text, "..");
}

}  // namespace orven
