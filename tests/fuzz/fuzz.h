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

// The targets. Each passes the input to a parser of ours and aborts when the parser or what it read breaks a
// promise.

/// The database file of the call records; its last 8 bytes choose what is done with it.
void Calls(Bytes input);
/// The journal, a zero byte, recordings left behind; without a journal also the texts of a call to note.
void Journal(Bytes input);
void Lines(Bytes input);     ///< lines.ini, a zero byte, edits
void Modem(Bytes input);     ///< format, pace, bytes from a modem
void Registry(Bytes input);  ///< registry.reg, two bytes 255, changes
void Rtp(Bytes input);       ///< plain or SRTP, then a pause and a datagram, again and again
void Sdp(Bytes input);       ///< SRTP policy, then descriptions with zero bytes between
void Sip(Bytes input);       ///< SRTP policy, then datagrams and what our side does, with zero bytes between
void Wave(Bytes input);      ///< an audio file whose last byte is also the position to go to

struct Target {
  std::string_view name;
  void (*run)(Bytes input);
};
// SIP is first: it needs a process that has no other threads yet.
inline constexpr Target kTargets[] = {{"sip", Sip},     {"calls", Calls}, {"journal", Journal},
                                      {"lines", Lines}, {"modem", Modem}, {"registry", Registry},
                                      {"rtp", Rtp},     {"sdp", Sdp},     {"wave", Wave}};

/// Ends the program when a promise is broken.
inline void Require(bool kept) {
  if (!kept) std::abort();
}

inline std::string TextOf(Bytes bytes) {
  return {bytes.begin(), bytes.end()};
}

/// Choices that an input makes, byte by byte; zeros at its end.
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
  /// A number from 0 to `end` - 1; `end` is at most 256.
  std::size_t Below(std::size_t end) { return end == 0 ? 0 : Byte() % end; }
  /// A byte with the length, then the bytes.
  Bytes Piece() { return Take(Byte()); }
  std::string Text() { return TextOf(Piece()); }

 private:
  Bytes rest_;
};

/// The input before `mark` and the choices behind it.
inline std::pair<std::string, Choices> ContentAndChoices(Bytes input, std::string_view mark) {
  const std::string text = TextOf(input);
  const std::size_t size = std::min(text.find(mark), text.size());
  return {text.substr(0, size), Choices(input.subspan(std::min(size + mark.size(), input.size())))};
}

}  // namespace orven::fuzz
