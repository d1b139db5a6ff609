// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace orven {

/// Bytes of the well-formed UTF-8 character (RFC 3629) that `text` begins with, 1 to 4; 0 when
/// there is none: empty, cut short, overlong, a surrogate, beyond U+10FFFF.
constexpr std::size_t Utf8Length(std::string_view text) {
  if (text.empty()) return 0;
  const auto byte = [text](std::size_t at) { return static_cast<unsigned char>(text[at]); };
  const unsigned first = byte(0);
  if (first < 0x80) return 1;
  const std::size_t length = first >= 0xF0 ? 4 : first >= 0xE0 ? 3 : 2;
  if (first < 0xC2 || first > 0xF4 || text.size() < length) return 0;
  for (std::size_t at = 1; at < length; ++at) {
    if ((byte(at) & 0xC0U) != 0x80U) return 0;
  }
  const unsigned second = byte(1);
  const bool overlong = (first == 0xE0 && second < 0xA0) || (first == 0xF0 && second < 0x90);
  const bool surrogate = first == 0xED && second >= 0xA0;
  const bool beyond = first == 0xF4 && second >= 0x90;
  return overlong || surrogate || beyond ? 0 : length;
}

constexpr bool IsUtf8(std::string_view text) {
  while (!text.empty()) {
    const std::size_t length = Utf8Length(text);
    if (length == 0) return false;
    text.remove_prefix(length);
  }
  return true;
}

/// The code point of the UTF-8 character that `text` begins with and that has `length` bytes (Utf8Length).
char32_t CodePoint(std::string_view text, std::size_t length);

/// `text` if it is UTF-8; else it is taken for Latin-1 (ISO 8859-1), which old telephones send.
std::string Utf8FromUnknown(std::string_view text);

// UTF-16LE, as Windows exports write it.

/// Bytes that are not UTF-8 become low surrogates U+DC80 to U+DCFF, so that nothing is lost: a path on
/// disk may hold any byte.
std::string Utf16FromUtf8(std::string_view utf8);

/// The inverse. Other unpaired surrogates become U+FFFD. Nothing for an odd number of bytes.
std::optional<std::string> Utf8FromUtf16(std::string_view utf16);

}  // namespace orven
