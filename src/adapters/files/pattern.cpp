// SPDX-License-Identifier: GPL-3.0-or-later
#include <unistd.h>

#include <algorithm>

#include "adapters/files/disk_files.h"
#include "base/utf8.h"

namespace orven {

namespace {

char Lower(char letter) {
  return letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter - 'A' + 'a') : letter;
}

/// Bytes of the next character; a byte that is no UTF-8 counts as a character of its own.
std::size_t CharacterLength(std::string_view text) {
  return std::max<std::size_t>(1, Utf8Length(text));
}

bool IsLetter(char letter) {
  return Lower(letter) >= 'a' && Lower(letter) <= 'z';
}

bool IsDigit(char letter) {
  return letter >= '0' && letter <= '9';
}

/// Takes the number that `text` begins with, without leading zeros.
std::string_view TakeNumber(std::string_view& text) {
  text.remove_prefix(std::min(text.find_first_not_of('0'), text.size()));
  const auto end = std::find_if_not(text.begin(), text.end(), IsDigit);
  const auto number = text.substr(0, static_cast<std::size_t>(end - text.begin()));
  text.remove_prefix(number.size());
  return number;
}

bool IsThere(const std::string& path) {
  return ::access(path.c_str(), F_OK) == 0;
}

}  // namespace

bool ComesBefore(std::string_view name, std::string_view other) {
  auto left = name;
  auto right = other;
  while (!left.empty() && !right.empty()) {
    if (IsDigit(left.front()) && IsDigit(right.front())) {
      const auto one = TakeNumber(left);
      const auto two = TakeNumber(right);
      if (one.size() != two.size()) return one.size() < two.size();
      if (one != two) return one < two;
      continue;
    }
    const auto one = static_cast<unsigned char>(Lower(left.front()));
    const auto two = static_cast<unsigned char>(Lower(right.front()));
    if (one != two) return one < two;
    left.remove_prefix(1);
    right.remove_prefix(1);
  }
  return left.empty() && right.empty() ? name < other : left.empty();
}

std::string PathInAnyCase(const std::string& path) {
  constexpr std::size_t kLongest = 4;  // letters; each doubles the names to look for
  const auto dot = path.rfind('.');
  if (dot == path.npos || path.size() - dot - 1 > kLongest || path.find('/', dot) != path.npos) return path;
  if (IsThere(path)) return path;
  const auto letters = static_cast<unsigned>(path.size() - dot - 1);
  for (unsigned upper = 0; upper < 1U << letters; ++upper) {
    auto there = path;
    for (unsigned i = 0; i < letters; ++i) {
      char& letter = there[dot + 1 + i];
      if (IsLetter(letter))
        letter = static_cast<char>(Lower(letter) - ((upper >> i & 1U) != 0 ? 'a' - 'A' : 0));
    }
    if (IsThere(there)) return there;
  }
  return path;
}

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
