// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <deque>
#include <span>
#include <vector>

#include "modem_emulator/sound_coding.h"

namespace orven::emulator {

/// The sound that the host transmits: shielded bytes in, the line's samples out at exactly their rate,
/// from a buffer that is finite and can run dry. One for each +VTX.
class Playback {
 public:
  enum class Said {
    Sound,   ///< a byte of sound, or the first half of a shielded one
    End,     ///< <DLE><ETX>
    Cancel,  ///< <DLE><CAN>
    Other,   ///< <DLE> and something that has no meaning here: most likely a 0x10 that was not shielded
    Full     ///< there was no room for the byte, which is lost
  };

  /// `played` gets the bytes as they are played, unshielded.
  Playback(ModemCoding coding, int rate, std::size_t capacity, std::vector<std::uint8_t>& played);

  Said Put(std::uint8_t byte);
  std::size_t Room() const { return capacity_ - buffer_.size(); }
  /// Whether any sound has come.
  bool Begun() const { return begun_; }
  bool Ended() const { return ended_; }
  /// Whether everything up to <DLE><ETX> has been played.
  bool Over() const { return ended_ && flushed_ && line_.empty(); }

  /// The line's next samples, in 8000 a second. True when the buffer has just run dry.
  bool Take(std::span<std::int16_t> out);

  /// What is in the buffer is thrown away.
  void Purge();

 private:
  Said Code(std::uint8_t code);
  Said Store(std::uint8_t byte);
  bool Play(std::size_t samples);

  ModemCoding coding_;
  int rate_;
  std::size_t capacity_;
  RateChange change_;
  std::deque<std::uint8_t> buffer_;
  std::vector<std::int16_t> line_;  ///< decoded, at the line's rate, not yet taken
  std::vector<std::uint8_t>& played_;
  std::int64_t taken_ = 0;   ///< of the line's samples
  std::int64_t passed_ = 0;  ///< of the modem's samples, those that were missing too
  bool dle_ = false;
  bool begun_ = false;
  bool dry_ = false;
  bool ended_ = false;
  bool flushed_ = false;
};

}  // namespace orven::emulator
