// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/channel/message_framing.h"

#include "base/utf8.h"
#include "platform/data_exchange.h"

namespace orven {
namespace {

constexpr std::size_t kLengthBytes = 4;

std::size_t LengthIn(std::string_view bytes) {
  std::size_t length = 0;
  for (const char byte : bytes.substr(0, kLengthBytes))
    length = length << 8U | static_cast<unsigned char>(byte);
  return length;
}

}  // namespace

bool IsMessage(std::string_view text) {
  return text.size() <= DataExchange::kLongestMessage && IsUtf8(text);
}

std::string Framed(std::string_view message) {
  std::string bytes;
  bytes.reserve(kLengthBytes + message.size());
  for (std::size_t shift = 8 * kLengthBytes; shift > 0; shift -= 8) {
    bytes += static_cast<char>(message.size() >> (shift - 8) & 0xFFU);
  }
  return bytes.append(message);
}

void MessageReader::Add(std::string_view bytes) {
  if (broken_) return;
  bytes_.erase(0, read_);
  read_ = 0;
  bytes_.append(bytes);
}

std::optional<std::string> MessageReader::Next() {
  const std::string_view rest = std::string_view(bytes_).substr(read_);
  if (broken_ || rest.size() < kLengthBytes) return std::nullopt;
  const std::size_t length = LengthIn(rest);
  if (length > DataExchange::kLongestMessage) return Break();
  if (rest.size() < kLengthBytes + length) return std::nullopt;
  std::string message(rest.substr(kLengthBytes, length));
  if (!IsMessage(message)) return Break();
  read_ += kLengthBytes + length;
  return message;
}

std::optional<std::string> MessageReader::Break() {
  broken_ = true;
  bytes_.clear();
  read_ = 0;
  return std::nullopt;
}

}  // namespace orven
