// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <vector>

namespace orven {
/// The bytes with a meaning after a <DLE> (ITU-T V.253, clause 9). A <DLE> within audio is doubled.
inline constexpr std::uint8_t kDle = 0x10;
inline constexpr std::uint8_t kEtx = 0x03;  ///< the audio ends here
inline constexpr std::uint8_t kCan = 0x18;  ///< from us: discard what has not been played
inline constexpr std::uint8_t kSub = 0x1A;  ///< from the modem: two <DLE> within audio
inline constexpr std::uint8_t kEsc = 0x1B;  ///< ends receiving

/// Appends `audio` to `out`, with each <DLE> doubled.
void AppendShielded(std::span<const std::uint8_t> audio, std::vector<std::uint8_t>& out);

/// Receives a voice modem's output, in its order; ignores what it has no function for.
class ModemOutput {
 public:
  virtual ~ModemOutput() = default;

  /// A line of text without its end and without blanks around it; never empty, no control characters.
  virtual void Line(const std::string& /*text*/) {}
  /// <DLE>x: an event on the line, for example 'R' a ring, '5' a key, 'b' the busy tone. `code` is any
  /// visible ASCII character, also one without a meaning.
  virtual void Event(char /*code*/) {}
  /// <DLE>X … <DLE>.: a packet, for example a caller id. Its lines keep their ends; no other control
  /// characters.
  virtual void Packet(const std::string& /*text*/) {}
  /// Received audio, unshielded, in the modem's sample format. Valid during the call only.
  virtual void Audio(std::span<const std::uint8_t> /*bytes*/) {}
  /// The received audio is over (<DLE><ETX>, <DLE><ESC>); lines follow.
  virtual void AudioEnded() {}
};

/// Parses a voice modem's output (ITU-T V.253; Hayes commands, ITU-T V.250), in pieces of any size. Garbage
/// affects only its own line or packet. Not thread-safe.
class ModemReader {
 public:
  /// A longer line is discarded up to its end. A longer packet is discarded too, and what follows is read as
  /// if it had ended.
  static constexpr std::size_t kLongestLine = 1024;

  /// `output` is called inside Read; it may call ExpectAudio and ExpectLines there.
  explicit ModemReader(ModemOutput& output) : output_(output) {}

  void Read(std::span<const std::uint8_t> bytes);

  /// Audio starts right after the line end of the next "CONNECT", and ends with AudioEnded.
  void ExpectAudio() { audio_expected_ = true; }

  /// From now on reads lines, even in the middle of audio whose end was lost, and no longer expects audio.
  void ExpectLines();

 private:
  enum class Mode : std::uint8_t {
    Lines,
    Connected,  ///< after the <CR> of "CONNECT": an <LF> still belongs to it
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
  bool dle_ = false;       ///< the byte before was a <DLE>
  bool packet_ = false;    ///< within <DLE>X … <DLE>.
  bool too_long_ = false;  ///< the rest of this line is discarded
  std::string line_;
  std::string packet_text_;
};

}  // namespace orven
