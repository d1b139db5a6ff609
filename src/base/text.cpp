// SPDX-License-Identifier: GPL-3.0-or-later
#include "base/text.h"

#include <algorithm>
#include <charconv>

namespace orven {

std::string_view Trimmed(std::string_view text, std::string_view blanks) {
  const auto first = text.find_first_not_of(blanks);
  if (first == std::string_view::npos) return {};
  return text.substr(first, text.find_last_not_of(blanks) - first + 1);
}

std::string Lower(std::string_view text) {
  std::string lower(text);
  std::transform(lower.begin(), lower.end(), lower.begin(),
                 [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; });
  return lower;
}

std::vector<std::string> Split(std::string_view text, char separator) {
  std::vector<std::string> parts;
  for (std::size_t begin = 0;;) {
    const auto end = text.find(separator, begin);
    parts.emplace_back(text.substr(begin, end - begin));
    if (end == std::string_view::npos) return parts;
    begin = end + 1;
  }
}

std::string PercentEncoded(std::string_view text, bool (*plain)(unsigned char byte)) {
  static constexpr std::string_view kDigits = "0123456789ABCDEF";
  std::string encoded;
  for (const char c : text) {
    const auto byte = static_cast<unsigned char>(c);
    if (plain(byte)) {
      encoded += c;
    } else {
      encoded += {'%', kDigits[byte >> 4U], kDigits[byte & 15U]};
    }
  }
  return encoded;
}

std::optional<std::string> PercentDecoded(std::string_view text) {
  std::string decoded;
  for (std::size_t at = 0; at < text.size(); ++at) {
    if (text[at] != '%') {
      decoded += text[at];
      continue;
    }
    if (text.size() - at < 3) return std::nullopt;
    unsigned char byte = 0;
    const char* const digits = text.data() + at + 1;
    const auto [end, error] = std::from_chars(digits, digits + 2, byte, 16);
    if (error != std::errc() || end != digits + 2) return std::nullopt;
    decoded += static_cast<char>(byte);
    at += 2;
  }
  return decoded;
}

}  // namespace orven
