// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/line/modem/caller_id_message.h"

#include <charconv>
#include <cstddef>
#include <cstdint>
#include <numeric>

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

/// Type, length, and the checksum behind them.
constexpr std::size_t kFrame = 3;

unsigned char ByteAt(std::string_view bytes, std::size_t at) {
  return static_cast<unsigned char>(bytes[at]);
}

/// Empty when there is anything but pairs of digits and blanks.
std::string FromHexadecimal(std::string_view text) {
  std::string digits;
  for (const char c : text) {
    if (c != ' ' && c != '"') digits += c;
  }
  if (digits.size() % 2 != 0) return {};
  std::string bytes;
  for (std::size_t i = 0; i < digits.size(); i += 2) {
    std::uint8_t byte = 0;
    const char* pair = digits.data() + i;
    if (std::from_chars(pair, pair + 2, byte, 16).ptr != pair + 2) return {};
    bytes += static_cast<char>(byte);
  }
  return bytes;
}

/// Type, length, so many bytes, and what makes the sum of all a multiple of 256.
bool IsWhole(std::string_view bytes) {
  if (bytes.size() < kFrame || bytes.size() != ByteAt(bytes, 1) + kFrame) return false;
  const auto add = [](unsigned sum, char c) { return sum + static_cast<unsigned char>(c); };
  return std::accumulate(bytes.begin(), bytes.end(), 0U, add) % 256 == 0;
}

CallerIdMessage ReadMultiple(std::string_view parameters) {
  CallerIdMessage message;
  while (parameters.size() >= 2) {
    const auto type = ByteAt(parameters, 0);
    const std::size_t length = ByteAt(parameters, 1);
    if (parameters.size() < length + 2) break;
    const auto value = parameters.substr(2, length);
    if (type == kNumber || type == kNoNumber) message.number = value;
    if (type == kName || type == kNoName) message.name = value;
    parameters.remove_prefix(length + 2);
  }
  return message;
}

}  // namespace

std::optional<CallerIdMessage> ReadCallerIdMessage(std::string_view hexadecimal) {
  const auto bytes = FromHexadecimal(hexadecimal);
  if (!IsWhole(bytes)) return std::nullopt;
  const auto data = std::string_view(bytes).substr(2, bytes.size() - kFrame);
  if (ByteAt(bytes, 0) == kMultiple) return ReadMultiple(data);
  if (ByteAt(bytes, 0) != kSingle || data.size() < kDateAndTime) return std::nullopt;
  return CallerIdMessage{std::string(data.substr(kDateAndTime)), std::nullopt};
}

}  // namespace orven
