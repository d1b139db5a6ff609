// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/line/service/lines_notation.h"

namespace orven {

std::string_view TrimmedLine(std::string_view text) {
  const std::size_t begin = text.find_first_not_of(kLineBlanks);
  if (begin == text.npos) return {};
  return text.substr(begin, text.find_last_not_of(kLineBlanks) - begin + 1);
}

std::string_view WithoutLineComment(std::string_view line) {
  const std::string_view text = TrimmedLine(line);
  if (text.starts_with(';') || text.starts_with('#')) return {};
  for (std::size_t at = text.find(';'); at != text.npos; at = text.find(';', at + 1)) {
    if (at > 0 && kLineBlanks.find(text[at - 1]) != kLineBlanks.npos) return TrimmedLine(text.substr(0, at));
  }
  return text;
}

std::string LowerAscii(std::string_view text) {
  std::string lower(text);
  for (char& letter : lower) {
    if (letter >= 'A' && letter <= 'Z') letter = static_cast<char>(letter - 'A' + 'a');
  }
  return lower;
}

}  // namespace orven
