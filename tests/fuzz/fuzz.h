// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <span>
#include <string>
#include <string_view>
#include <utility>

namespace orven::fuzz {

using Bytes = std::span<const std::uint8_t>;

// The fuzz targets. Each passes the input to one of our parsers and aborts if the parser or its result breaks
// a promise. The comments describe the input.

/// A database file of call records. Its last 8 bytes also choose the changes.
void Calls(Bytes input);
void Lines(Bytes input);     ///< lines.ini, a zero byte, edits
void Modem(Bytes input);     ///< sample format, piece sizes, bytes from a modem
void Registry(Bytes input);  ///< registry.reg, two bytes of 255, changes
void Rtp(Bytes input);       ///< plain or SRTP, then pairs of a pause and a datagram
void Sdp(Bytes input);       ///< SRTP policy, then descriptions separated by zero bytes
void Sip(Bytes input);       ///< SRTP policy, then datagrams and our actions, separated by zero bytes
void Wave(Bytes input);      ///< an audio file; its last byte is also the position to skip to

struct Target {
  std::string_view name;
  void (*run)(Bytes input);
};
// SIP must be first: it needs a process without other threads.
inline constexpr Target kTargets[] = {{"sip", Sip},     {"calls", Calls},       {"lines", Lines},
                                      {"modem", Modem}, {"registry", Registry}, {"rtp", Rtp},
                                      {"sdp", Sdp},     {"wave", Wave}};

/// Aborts if a promise is broken.
inline void Require(bool kept) {
  if (!kept) std::abort();
}

inline std::string TextOf(Bytes bytes) {
  return {bytes.begin(), bytes.end()};
}

/// Reads choices from the input byte by byte. After the end, every byte is 0.
class Choices {
 public:
  explicit Choices(Bytes bytes) : rest_(bytes) {}

  bool Any() const { return !rest_.empty(); }
  Bytes Take(std::size_t size) {
    const Bytes taken = rest_.first(std::min(size, rest_.size()));
    rest_ = rest_.subspan(taken.size());
    return taken;
  }
  std::uint8_t Byte() { return Any() ? Take(1).front() : 0; }
  /// Returns a number from 0 to `end` - 1. `end` is at most 256.
  std::size_t Below(std::size_t end) { return end == 0 ? 0 : Byte() % end; }
  /// Reads a length byte, then that many bytes.
  Bytes Piece() { return Take(Byte()); }
  std::string Text() { return TextOf(Piece()); }

 private:
  Bytes rest_;
};

/// Returns the input before `mark` and the choices after it.
inline std::pair<std::string, Choices> ContentAndChoices(Bytes input, std::string_view mark) {
  const std::string text = TextOf(input);
  const std::size_t size = std::min(text.find(mark), text.size());
  return {text.substr(0, size), Choices(input.subspan(std::min(size + mark.size(), input.size())))};
}

}  // namespace orven::fuzz
