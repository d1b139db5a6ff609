// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/line/service/caller_text.h"

#include <cstdint>

namespace orven {
namespace {

struct Character {
  char32_t code = U'?';
  std::size_t bytes = 1;
};

/// Bytes that a UTF-8 sequence with this first byte has; 0 for a byte that begins none (RFC 3629).
std::size_t SequenceLength(unsigned char first) {
  if (first < 0x80) return 1;
  if (first >= 0xC2 && first <= 0xDF) return 2;
  if (first >= 0xE0 && first <= 0xEF) return 3;
  if (first >= 0xF0 && first <= 0xF4) return 4;
  return 0;
}

/// The character at the beginning of `text`; a byte that begins no valid one is a "?".
Character Next(std::string_view text) {
  const auto first = static_cast<unsigned char>(text.front());
  const auto length = SequenceLength(first);
  if (length == 1) return {first, 1};
  if (length == 0 || length > text.size()) return {};
  char32_t code = first & (0x7FU >> length);
  for (std::size_t i = 1; i < length; ++i) {
    const auto byte = static_cast<unsigned char>(text[i]);
    if ((byte & 0xC0U) != 0x80) return {};
    code = (code << 6U) | (byte & 0x3FU);
  }
  const bool overlong = (length == 3 && code < 0x800) || (length == 4 && code < 0x10000);
  const bool surrogate = code >= 0xD800 && code <= 0xDFFF;
  if (overlong || surrogate || code > 0x10FFFF) return {};
  return {code, length};
}

/// Characters that a reader would not see but a terminal, a mail program or a log viewer would obey.
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
    const auto [code, bytes] = Next(text);
    if (code == U' ' || IsControl(code)) {
      AppendBlank(clean);
    } else if (code == U'"') {
      clean += '\'';
    } else if (code == U'?') {
      clean += '?';
    } else {
      clean += text.substr(0, bytes);
    }
    text.remove_prefix(bytes);
  }
  if (!clean.empty() && clean.back() == ' ') clean.pop_back();
  return clean;
}

}  // namespace orven
