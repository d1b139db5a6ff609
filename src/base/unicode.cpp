// SPDX-License-Identifier: GPL-3.0-or-later
#include "base/unicode.h"

#include <array>
#include <cstdint>

namespace orven {

namespace {

// Surrogates, and the planes above the first 65,536 characters (RFC 2781, section 2).
constexpr std::uint32_t kHighSurrogate = 0xD800;
constexpr std::uint32_t kLowSurrogate = 0xDC00;
constexpr std::uint32_t kSurrogatesEnd = 0xE000;
constexpr std::uint32_t kSecondPlane = 0x10000;
constexpr std::uint32_t kReplacement = 0xFFFD;
// An invalid byte 0x80..0xFF is represented as kLowSurrogate plus the byte.
constexpr std::uint32_t kStrayFirst = kLowSurrogate + 0x80;
constexpr std::uint32_t kStrayLast = kLowSurrogate + 0xFF;

std::uint32_t ByteAt(std::string_view text, std::size_t at) {
  return static_cast<unsigned char>(text[at]);
}

void AppendUnit(std::string& utf16, std::uint32_t unit) {
  utf16 += static_cast<char>(unit & 0xFFU);
  utf16 += static_cast<char>(unit >> 8U & 0xFFU);
}

void AppendCharacter(std::string& utf8, std::uint32_t character) {
  const auto tail = [&utf8, character](unsigned shift) {
    utf8 += static_cast<char>(0x80U | (character >> shift & 0x3FU));
  };
  if (character < 0x80) {
    utf8 += static_cast<char>(character);
  } else if (character < 0x800) {
    utf8 += static_cast<char>(0xC0U | character >> 6U);
    tail(0);
  } else if (character < kSecondPlane) {
    utf8 += static_cast<char>(0xE0U | character >> 12U);
    tail(6);
    tail(0);
  } else {
    utf8 += static_cast<char>(0xF0U | character >> 18U);
    tail(12);
    tail(6);
    tail(0);
  }
}

}  // namespace

char32_t CodePoint(std::string_view text, std::size_t length) {
  if (length == 1) return ByteAt(text, 0);
  constexpr std::array<std::uint32_t, 5> kFirstBits{0, 0x7F, 0x1F, 0x0F, 0x07};
  std::uint32_t character = ByteAt(text, 0) & kFirstBits[length];
  for (std::size_t at = 1; at < length; ++at) character = character << 6U | (ByteAt(text, at) & 0x3FU);
  return character;
}

std::string Utf8FromUnknown(std::string_view text) {
  if (IsUtf8(text)) return std::string(text);
  std::string utf8;
  for (std::size_t at = 0; at < text.size(); ++at) AppendCharacter(utf8, ByteAt(text, at));
  return utf8;
}

std::string Utf16FromUtf8(std::string_view utf8) {
  std::string utf16;
  while (!utf8.empty()) {
    const std::size_t length = Utf8Length(utf8);
    if (length == 0) {
      AppendUnit(utf16, kLowSurrogate + ByteAt(utf8, 0));
      utf8.remove_prefix(1);
      continue;
    }
    const std::uint32_t character = CodePoint(utf8, length);
    if (character < kSecondPlane) {
      AppendUnit(utf16, character);
    } else {
      AppendUnit(utf16, kHighSurrogate + (character - kSecondPlane) / 0x400);
      AppendUnit(utf16, kLowSurrogate + (character - kSecondPlane) % 0x400);
    }
    utf8.remove_prefix(length);
  }
  return utf16;
}

std::optional<std::string> Utf8FromUtf16(std::string_view utf16) {
  if (utf16.size() % 2 != 0) return std::nullopt;
  const auto unit_at = [utf16](std::size_t at) {
    return at < utf16.size() ? ByteAt(utf16, at) | ByteAt(utf16, at + 1) << 8U : 0;
  };
  std::string utf8;
  for (std::size_t at = 0; at < utf16.size(); at += 2) {
    const std::uint32_t unit = unit_at(at);
    const std::uint32_t next = unit_at(at + 2);
    const bool high = unit >= kHighSurrogate && unit < kLowSurrogate;
    if (high && next >= kLowSurrogate && next < kSurrogatesEnd) {
      AppendCharacter(utf8, kSecondPlane + (unit - kHighSurrogate) * 0x400 + (next - kLowSurrogate));
      at += 2;
    } else if (unit >= kStrayFirst && unit <= kStrayLast) {
      utf8 += static_cast<char>(unit - kLowSurrogate);
    } else if (unit >= kHighSurrogate && unit < kSurrogatesEnd) {
      AppendCharacter(utf8, kReplacement);
    } else {
      AppendCharacter(utf8, unit);
    }
  }
  return utf8;
}

}  // namespace orven
