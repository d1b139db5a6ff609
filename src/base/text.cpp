// SPDX-License-Identifier: GPL-3.0-or-later
#include "base/text.h"

#include <algorithm>

#include "base/conversions.h"
#include "base/unicode.h"

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
    const auto byte = WholeNumber<unsigned char>(text.substr(at + 1, 2), 16);
    if (!byte) return std::nullopt;
    decoded += static_cast<char>(*byte);
    at += 2;
  }
  return decoded;
}

namespace {

/// Characters that a reader does not see but a terminal, a mail program or a log viewer obeys.
bool IsControl(char32_t code) {
  return code < 0x20 || (code >= 0x7F && code <= 0x9F) || code == 0x061C ||
         (code >= 0x200B && code <= 0x200F) || (code >= 0x2028 && code <= 0x202E) ||
         (code >= 0x2060 && code <= 0x206F) || code == 0xFEFF;
}

void AppendBlank(std::string& text) {
  if (!text.empty() && text.back() != ' ') text += ' ';
}

}  // namespace

std::string CleanCallerText(std::string_view text) {
  std::string clean;
  for (std::size_t count = 0; !text.empty() && count < kMaxCallerText; ++count) {
    const std::size_t length = Utf8Length(text);
    const char32_t code = length == 0 ? U'?' : CodePoint(text, length);
    if (code == U' ' || IsControl(code)) {
      AppendBlank(clean);
    } else if (length == 0 || code == U'"') {
      clean += length == 0 ? '?' : '\'';
    } else {
      clean += text.substr(0, length);
    }
    text.remove_prefix(std::max<std::size_t>(length, 1));
  }
  if (!clean.empty() && clean.back() == ' ') clean.pop_back();
  return clean;
}

}  // namespace orven
