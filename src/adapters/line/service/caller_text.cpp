// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/line/service/caller_text.h"

#include <algorithm>

#include "base/unicode.h"

namespace orven {
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
