// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>

namespace orven {

/// What a voice modem says, in the order in which it says it.
class ModemSayings {
 public:
  virtual ~ModemSayings() = default;

  /// A line of text without its end and without blanks around it; never empty, no control characters.
  virtual void Line(const std::string& text) = 0;
  /// <DLE>x: something happened on the line, for example 'R' a ring, '5' a key, 'b' the busy tone.
  virtual void Sign(char code) = 0;
  /// <DLE>X … <DLE>.: a packet, for example a caller id.
  virtual void Packet(const std::string& text) = 0;
  /// Received sound, unshielded, in the modem's sample format.
  virtual void Sound(std::span<const std::uint8_t> bytes) = 0;
  /// The received sound is over (<DLE><ETX>, <DLE><ESC>); lines follow.
  virtual void SoundEnded() = 0;
};

/// Takes apart a voice modem's bytes (ITU-T V.253; Hayes commands, ITU-T V.250), however they are split.
/// Garbage costs no more than the line or packet that it is in. Not for use by several threads.
class ModemReader {
 public:
  /// A longer line (or packet) is no modem's; it is thrown away up to its end.
  static constexpr std::size_t kLongestLine = 1024;

  /// `sayings` is called within Read; it may call ExpectSound and ExpectLines there.
  explicit ModemReader(ModemSayings& sayings) : sayings_(sayings) {}

  void Read(std::span<const std::uint8_t> bytes);

  /// Sound begins right behind the line end of the next "CONNECT", and ends with SoundEnded.
  void ExpectSound();

  /// Whatever comes now are lines, also in the middle of sound: its end was lost.
  void ExpectLines();

 private:
  ModemSayings& sayings_;
};

}  // namespace orven
