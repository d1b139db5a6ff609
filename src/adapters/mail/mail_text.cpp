// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/mail/mail_text.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>

#include "base/text.h"
#include "base/unicode.h"

namespace orven {
namespace {

constexpr std::size_t kLine = 78;
/// RFC 2047, 2: a line with encoded words has at most 76 characters, and a word "=?UTF-8?B?" and "?=".
constexpr std::size_t kWordLine = 76;
constexpr std::size_t kWordFrame = 12;
/// The most characters of an encoded file name on one line; " filename*NN*=UTF-8''" and ";" are extra.
constexpr std::size_t kNameOnLine = 50;
/// RFC 5321, 4.5.3.1.3 allows a path of 256 characters with its brackets.
constexpr std::size_t kLongestAddress = 254;

bool IsControl(char c) {
  return static_cast<unsigned char>(c) < 0x20 || c == 0x7F;
}

/// A subset of what RFC 2231 leaves unencoded.
bool IsAttributeCharacter(unsigned char c) {
  return (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || c == '-' || c == '.' ||
         c == '_';
}

bool IsPlain(std::string_view text) {
  const bool printable = std::all_of(text.begin(), text.end(), [](char c) { return c >= ' ' && c <= '~'; });
  // A text that looks like an encoded word would be decoded; blanks at the ends would be lost.
  return printable && text.find("=?") == text.npos && !text.starts_with(' ') && !text.ends_with(' ');
}

/// The length of the whole characters in the first `most` bytes of `utf8`.
std::size_t WholeCharacters(std::string_view utf8, std::size_t most) {
  std::size_t length = 0;
  while (length < utf8.size()) {
    const std::size_t next = Utf8Length(utf8.substr(length));
    if (length + next > most) break;
    length += next;
  }
  return length;
}

/// `start`, followed by encoded words, one per line.
std::string WithEncodedWords(std::string start, std::string_view utf8) {
  std::size_t column = start.size();
  while (!utf8.empty()) {
    const std::size_t length = WholeCharacters(utf8, (kWordLine - kWordFrame - column) / 4 * 3);
    start += "=?UTF-8?B?" + Base64(utf8.substr(0, length)) + "?=";
    utf8.remove_prefix(length);
    if (!utf8.empty()) start += "\r\n ";
    column = 1;
  }
  return start;
}

std::string Quoted(std::string_view text) {
  std::string quoted = "\"";
  for (const char c : text) {
    if (c == '"' || c == '\\') quoted += '\\';
    quoted += c;
  }
  return quoted + '"';
}

}  // namespace

std::string OneLine(std::string_view text) {
  std::string line;
  while (!text.empty()) {
    const std::size_t length = Utf8Length(text);
    if (length == 0) {
      line += "\xEF\xBF\xBD";
    } else if (IsControl(text.front())) {
      line += ' ';
    } else {
      line += text.substr(0, length);
    }
    text.remove_prefix(std::max<std::size_t>(length, 1));
  }
  return line;
}

std::string Base64(std::string_view bytes) {
  static constexpr std::string_view kDigits =
      "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
  std::string text;
  for (std::size_t at = 0; at < bytes.size(); at += 3) {
    const std::size_t count = std::min<std::size_t>(3, bytes.size() - at);
    unsigned group = 0;
    for (std::size_t i = 0; i < 3; ++i) {
      group = group << 8U | (i < count ? static_cast<unsigned char>(bytes[at + i]) : 0U);
    }
    for (std::size_t i = 0; i < 4; ++i) {
      text += i <= count ? kDigits[group >> (18U - 6U * i) & 63U] : '=';
    }
  }
  return text;
}

std::string TextField(std::string_view name, std::string_view value) {
  const std::string line = OneLine(value);
  const std::string start = std::string(name) + ": ";
  if (IsPlain(line) && start.size() + line.size() <= kLine) return start + line;
  return WithEncodedWords(start, line);
}

std::string MailboxField(std::string_view name, std::string_view display, std::string_view address) {
  const std::string line = OneLine(display);
  const std::string start = std::string(name) + ":";
  const std::string bracketed = "<" + std::string(address) + ">";
  if (line.empty()) return start + " " + bracketed;
  std::string field = start + " " + Quoted(line) + " " + bracketed;
  if (IsPlain(line) && field.size() <= kLine) return field;
  return WithEncodedWords(start + " ", line) + "\r\n " + bracketed;
}

std::string AttachmentField(std::string_view file_name) {
  const std::string name = OneLine(file_name);
  const std::string start = "Content-Disposition: attachment;\r\n filename";
  if (IsPlain(name) && name.size() <= kNameOnLine) return start + "=" + Quoted(name);
  std::string encoded = PercentEncoded(name, IsAttributeCharacter);
  if (encoded.size() <= kNameOnLine) return start + "*=UTF-8''" + encoded;
  std::string field = "Content-Disposition: attachment";
  for (int section = 0; !encoded.empty(); ++section) {
    std::size_t length = std::min(encoded.size(), kNameOnLine);
    // An escape is not split.
    if (const std::size_t sign = encoded.rfind('%', length - 1); sign != encoded.npos && sign + 3 > length) {
      length = sign;
    }
    field += ";\r\n filename*" + std::to_string(section) + "*=" + (section == 0 ? "UTF-8''" : "");
    field += encoded.substr(0, length);
    encoded.erase(0, length);
  }
  return field;
}

std::string MailDate(std::time_t time) {
  static constexpr std::array kDays{"Sun", "Mon", "Tue", "Wed", "Thu", "Fri", "Sat"};
  static constexpr std::array kMonths{"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                                      "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};
  // The time zone may have changed since the program started.
  ::tzset();
  std::tm local{};
  ::localtime_r(&time, &local);
  const long minutes = std::labs(local.tm_gmtoff) / 60;
  std::array<char, 64> text{};
  std::snprintf(text.data(), text.size(), "%s, %02d %s %04d %02d:%02d:%02d %c%02ld%02ld",
                kDays.at(static_cast<std::size_t>(local.tm_wday)), local.tm_mday,
                kMonths.at(static_cast<std::size_t>(local.tm_mon)), local.tm_year + 1900, local.tm_hour,
                local.tm_min, local.tm_sec, local.tm_gmtoff < 0 ? '-' : '+', minutes / 60, minutes % 60);
  return text.data();
}

bool IsMailAddress(std::string_view text) {
  return !text.empty() && text.size() <= kLongestAddress && IsUtf8(text) &&
         std::none_of(text.begin(), text.end(), IsControl) && text.find_first_of(" <>,;()\"\\") == text.npos;
}

}  // namespace orven
