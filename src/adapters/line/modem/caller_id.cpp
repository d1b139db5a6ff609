// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/line/modem/caller_id.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <cstddef>
#include <cstdint>
#include <numeric>
#include <optional>
#include <sstream>
#include <string>
#include <string_view>
#include <utility>

#include "base/conversions.h"
#include "base/text.h"
#include "base/unicode.h"

namespace orven {
namespace {

// Message types, GR-30; parameters of the multiple data message format, GR-31 and GR-1188.
constexpr unsigned char kSingle = 0x04;
constexpr unsigned char kMultiple = 0x80;
constexpr unsigned char kNumber = 0x02;
constexpr unsigned char kNoNumber = 0x04;
constexpr unsigned char kName = 0x07;
constexpr unsigned char kNoName = 0x08;

/// Before the number in the single format: month, day, hour, minute, two digits each.
constexpr std::size_t kDateAndTime = 8;

/// Type, length and checksum.
constexpr std::size_t kFrame = 3;

unsigned char ByteAt(std::string_view bytes, std::size_t at) {
  return static_cast<unsigned char>(bytes[at]);
}

/// Empty when the text has anything but pairs of digits, and blanks.
std::string FromHexadecimal(std::string_view text) {
  std::string digits;
  for (const char c : text) {
    if (c != ' ' && c != '"') digits += c;
  }
  if (digits.size() % 2 != 0) return {};
  std::string bytes;
  for (std::size_t i = 0; i < digits.size(); i += 2) {
    const auto byte = WholeNumber<std::uint8_t>(std::string_view(digits).substr(i, 2), 16);
    if (!byte) return {};
    bytes += static_cast<char>(*byte);
  }
  return bytes;
}

/// Type, length, that many bytes, and a checksum that makes the sum of all a multiple of 256.
bool IsWhole(std::string_view bytes) {
  if (bytes.size() < kFrame || bytes.size() != ByteAt(bytes, 1) + kFrame) return false;
  const auto add = [](unsigned sum, char c) { return sum + static_cast<unsigned char>(c); };
  return std::accumulate(bytes.begin(), bytes.end(), 0U, add) % 256 == 0;
}

std::string_view Unquoted(std::string_view text) {
  const bool quoted = text.size() >= 2 && text.front() == '"' && text.back() == '"';
  return quoted ? Trimmed(text.substr(1, text.size() - 2)) : text;
}

std::string Capitals(std::string_view text) {
  std::string capitals(text);
  std::ranges::transform(capitals, capitals.begin(),
                         [](unsigned char c) { return static_cast<char>(std::toupper(c)); });
  return capitals;
}

/// What replaces a withheld or unknown number or name: P and O (GR-31), or words.
bool IsReason(std::string_view text) {
  static constexpr std::array<std::string_view, 6> kReasons{"P",       "O",           "PRIVATE",
                                                            "UNKNOWN", "OUT OF AREA", "ANONYMOUS"};
  return std::ranges::find(kReasons, Capitals(text)) != kReasons.end();
}

std::string Told(std::string_view value) {
  const auto text = Trimmed(Unquoted(Trimmed(value)));
  return IsReason(text) ? std::string() : Utf8FromUnknown(text);
}

}  // namespace

bool CallerIdLines::Take(const std::string& line) {
  const auto equals = line.find('=');
  if (equals == std::string::npos) return false;
  const auto tag = Capitals(Trimmed(std::string_view(line).substr(0, equals)));
  const auto value = std::string_view(line).substr(equals + 1);
  if (tag == "NMBR") {
    Tell(number_, value);
  } else if (tag == "NAME") {
    Tell(name_, value);
  } else if (tag == "MESG") {
    TakeMessage(value);
  } else if (tag != "DATE" && tag != "TIME") {
    return false;
  }
  any_ = true;
  return true;
}

void CallerIdLines::TakePacket(const std::string& packet) {
  std::string lines = packet;
  std::ranges::replace(lines, '\r', '\n');
  std::istringstream text(lines);
  for (std::string line; std::getline(text, line);) (void)Take(line);
}

std::optional<ModemCaller> CallerIdLines::Finish() {
  const auto lines = std::exchange(*this, CallerIdLines());
  if (!lines.number_ && !lines.name_) return std::nullopt;
  return ModemCaller{lines.name_.value_or(""), lines.number_.value_or("")};
}

/// Reads a caller id message in hexadecimal digits, with or without blanks: single (type 04) or multiple
/// (type 80) data message format, Telcordia GR-30 and GR-31. Nothing when it is of another type, cut short,
/// or its checksum is wrong. A reason for its absence ("P" withheld, "O" unknown) may take the place of a
/// number or name.
void CallerIdLines::TakeMessage(std::string_view hexadecimal) {
  const auto bytes = FromHexadecimal(hexadecimal);
  if (!IsWhole(bytes)) return;
  auto data = std::string_view(bytes).substr(2, bytes.size() - kFrame);
  std::optional<std::string_view> number, name;
  if (ByteAt(bytes, 0) == kSingle && data.size() >= kDateAndTime) number = data.substr(kDateAndTime);
  while (ByteAt(bytes, 0) == kMultiple && data.size() >= 2) {
    const auto type = ByteAt(data, 0);
    const std::size_t length = ByteAt(data, 1);
    if (data.size() < length + 2) break;
    const auto value = data.substr(2, length);
    if (type == kNumber || type == kNoNumber) number = value;
    if (type == kName || type == kNoName) name = value;
    data.remove_prefix(length + 2);
  }
  if (number) Tell(number_, *number);
  if (name) Tell(name_, *name);
}

/// A later line that withholds a value does not erase it.
void CallerIdLines::Tell(std::optional<std::string>& what, std::string_view value) {
  auto told = Told(value);
  if (!what || !told.empty()) what = std::move(told);
}

}  // namespace orven
