// SPDX-License-Identifier: GPL-3.0-or-later
#include <algorithm>

#include "adapters/files/disk_files.h"
#include "adapters/files/utf8.h"

namespace orven {

namespace {

char Lower(char letter) {
  return letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter - 'A' + 'a') : letter;
}

/// Bytes of the next character; a byte that is no UTF-8 counts as a character of its own.
std::size_t CharacterLength(std::string_view text) {
  return std::max<std::size_t>(1, Utf8Length(text));
}

}  // namespace

// Walks both texts once and, on a mismatch, lets the latest star take one character more: quadratic
// at worst, where a recursive match would be exponential.
bool MatchesPattern(std::string_view name, std::string_view pattern) {
  if (pattern == "*.*") return true;
  constexpr std::size_t kNone = std::string_view::npos;
  std::size_t at = 0;
  std::size_t in = 0;
  std::size_t star = kNone;
  std::size_t star_at = 0;
  while (at < name.size()) {
    if (in < pattern.size() && pattern[in] == '*') {
      star = in++;
      star_at = at;
    } else if (in < pattern.size() && pattern[in] == '?') {
      at += CharacterLength(name.substr(at));
      ++in;
    } else if (in < pattern.size() && Lower(pattern[in]) == Lower(name[at])) {
      ++at;
      ++in;
    } else if (star != kNone) {
      star_at += CharacterLength(name.substr(star_at));
      at = star_at;
      in = star + 1;
    } else {
      return false;
    }
  }
  return pattern.find_first_not_of('*', in) == kNone;
}

}  // namespace orven
