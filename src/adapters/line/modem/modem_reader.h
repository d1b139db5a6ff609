// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <vector>

namespace orven {
/// The bytes that mean something behind a <DLE> (ITU-T V.253, clause 9). A <DLE> that is sound is doubled.
inline constexpr std::uint8_t kDle = 0x10;
inline constexpr std::uint8_t kEtx = 0x03;  ///< the sound ends here
inline constexpr std::uint8_t kCan = 0x18;  ///< from us: throw away what has not been played
inline constexpr std::uint8_t kSub = 0x1A;  ///< from the modem: two <DLE> that are sound
inline constexpr std::uint8_t kEsc = 0x1B;  ///< ends receiving

/// Appends `sound` to `out` as a modem takes it.
void AppendShielded(std::span<const std::uint8_t> sound, std::vector<std::uint8_t>& out);

/// What a voice modem says, in the order in which it says it.
class ModemOutput {
 public:
  virtual ~ModemOutput() = default;

  /// A line of text without its end and without blanks around it; never empty, no control characters.
  virtual void Line(const std::string& text) = 0;
  /// <DLE>x: something happened on the line, for example 'R' a ring, '5' a key, 'b' the busy tone. Any
  /// visible ASCII character, also one that means nothing.
  virtual void Event(char code) = 0;
  /// <DLE>X … <DLE>.: a packet, for example a caller id. Its lines keep their ends; no other control
  /// characters.
  virtual void Packet(const std::string& text) = 0;
  /// Received sound, unshielded, in the modem's sample format. Good during the call only.
  virtual void Audio(std::span<const std::uint8_t> bytes) = 0;
  /// The received sound is over (<DLE><ETX>, <DLE><ESC>); lines follow.
  virtual void AudioEnded() = 0;
};

/// Takes apart a voice modem's bytes (ITU-T V.253; Hayes commands, ITU-T V.250), however they are split.
/// Garbage costs no more than the line or packet that it is in. Not for use by several threads.
class ModemReader {
 public:
  /// A longer line is no modem's; it is thrown away up to its end. A packet that gets longer is thrown away,
  /// too, and what follows is read as if it had ended.
  static constexpr std::size_t kLongestLine = 1024;

  /// `output` is called within Read; it may call ExpectAudio and ExpectLines there.
  explicit ModemReader(ModemOutput& output) : output_(output) {}

  void Read(std::span<const std::uint8_t> bytes);

  /// Sound begins right behind the line end of the next "CONNECT", and ends with AudioEnded.
  void ExpectAudio() { audio_expected_ = true; }

  /// Whatever comes now are lines, also in the middle of sound: its end was lost. Nor is sound expected any
  /// more.
  void ExpectLines();

 private:
  enum class Mode : std::uint8_t {
    Lines,
    Connected,  ///< behind the <CR> of "CONNECT": an <LF> still belongs to it
    Audio,
  };

  std::size_t ReadAudio(std::span<const std::uint8_t> bytes);
  void ReadByte(std::uint8_t byte);
  void BehindDle(std::uint8_t byte);
  void ReadEvent(char code);
  void ReadText(std::uint8_t byte);
  void EndLine(std::uint8_t end);
  void EndAudio();

  ModemOutput& output_;
  Mode mode_ = Mode::Lines;
  bool audio_expected_ = false;
  bool dle_ = false;       ///< the byte before was a <DLE> that begins something
  bool packet_ = false;    ///< within <DLE>X … <DLE>.
  bool too_long_ = false;  ///< the rest of this line is thrown away
  std::string line_;
  std::string packet_text_;
};

}  // namespace orven
