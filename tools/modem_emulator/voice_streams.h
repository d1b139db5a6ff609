// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <samplerate.h>

#include <cstdint>
#include <deque>
#include <memory>
#include <optional>
#include <span>
#include <vector>

#include "modem_emulator/host_port.h"
#include "modem_emulator/modem_profile.h"

namespace orven::emulator {
/// Bytes that mean something behind a <DLE> (ITU-T V.253, clause 9), written down here once more: the
/// emulator shares nothing with what it tests.
inline constexpr std::uint8_t kNulByte = 0x00;
inline constexpr std::uint8_t kEtxByte = 0x03;
inline constexpr std::uint8_t kDleByte = 0x10;
inline constexpr std::uint8_t kCanByte = 0x18;
inline constexpr std::uint8_t kSubByte = 0x1A;
inline constexpr std::uint8_t kEscByte = 0x1B;

inline constexpr int kLineRate = 8000;  ///< samples a second of the telephone line

std::size_t BytesPerSample(ModemCoding coding);
/// Appends one sample in that coding; 16 bits have their low byte first.
void WriteSample(ModemCoding coding, std::int16_t sample, std::vector<std::uint8_t>& bytes);
/// Of the first bytes behind `bytes`.
std::int16_t ReadSample(ModemCoding coding, const std::uint8_t* bytes);

/// Brings a stream of samples from one rate to another; untouched where both are the same.
class RateChange {
 public:
  RateChange(int from, int to);

  /// Appends to `out`. Some samples are held back until later calls; `last` gives these, too.
  void Process(std::span<const std::int16_t> in, bool last, std::vector<std::int16_t>& out);

 private:
  struct Delete {
    void operator()(SRC_STATE* state) const { src_delete(state); }
  };
  double ratio_;
  std::unique_ptr<SRC_STATE, Delete> state_;  ///< none when both rates are the same
};

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

/// The line's sound on its way to the host: in the modem's format, shielded, in blocks of uneven size.
/// One for each +VRX.
class ReceiveStream {
 public:
  /// `sent` gets the bytes as they are sent, before they are shielded. `pairs`: two 0x10 in a row become
  /// <DLE><SUB>.
  ReceiveStream(ModemCoding coding, int rate, bool pairs, HostPort& port, std::vector<std::uint8_t>& sent);

  /// The line's next samples, 8000 a second.
  void Put(std::span<const std::int16_t> samples);

  /// Sends what waits for a block to be full.
  void Flush();

 private:
  void ChooseBlock();

  ModemCoding coding_;
  int rate_;
  bool pairs_;
  HostPort& port_;
  std::vector<std::uint8_t>& sent_;
  RateChange change_;
  std::vector<std::uint8_t> block_;
  std::size_t enough_ = 0;  ///< bytes of the present block
};

/// Reports silence in received sound: 's' when there has never been anything else, 'q' when it follows
/// sound; once each time.
class SilenceWatch {
 public:
  SilenceWatch() = default;
  /// `samples` of silence are reported, 8000 a second; 0: never.
  explicit SilenceWatch(std::int64_t samples) : enough_(samples) {}

  std::optional<char> Put(std::span<const std::int16_t> samples);

 private:
  std::int64_t enough_ = 0;
  std::int64_t silent_ = 0;
  bool heard_ = false;
};

}  // namespace orven::emulator
