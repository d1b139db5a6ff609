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
/// Bytes with a meaning after a <DLE> (ITU-T V.253, clause 9). Defined here again, as the emulator shares no
/// code with the driver that it tests.
inline constexpr std::uint8_t kNulByte = 0x00;
inline constexpr std::uint8_t kEtxByte = 0x03;
inline constexpr std::uint8_t kDleByte = 0x10;
inline constexpr std::uint8_t kCanByte = 0x18;
inline constexpr std::uint8_t kSubByte = 0x1A;
inline constexpr std::uint8_t kEscByte = 0x1B;

inline constexpr int kLineRate = 8000;  ///< samples a second of the telephone line

std::size_t BytesPerSample(ModemCoding coding);
/// Appends one sample in that coding; 16-bit samples have the low byte first.
void WriteSample(ModemCoding coding, std::int16_t sample, std::vector<std::uint8_t>& bytes);
/// Decodes the sample at `bytes`.
std::int16_t ReadSample(ModemCoding coding, const std::uint8_t* bytes);

/// Converts a stream of samples from one rate to another; equal rates pass unchanged.
class RateChange {
 public:
  RateChange(int from, int to);

  /// Appends to `out`. Some samples are held back until later calls; `last` flushes them.
  void Process(std::span<const std::int16_t> in, bool last, std::vector<std::int16_t>& out);

 private:
  struct Delete {
    void operator()(SRC_STATE* state) const { src_delete(state); }
  };
  double ratio_;
  std::unique_ptr<SRC_STATE, Delete> state_;  ///< empty when both rates are equal
};

/// Audio from the host to the line: takes shielded bytes, returns samples at exactly the line's rate, from a
/// finite buffer that can run empty. One per +VTX.
class Playback {
 public:
  enum class Said {
    Sound,   ///< a byte of audio, or the first half of a shielded one
    End,     ///< <DLE><ETX>
    Cancel,  ///< <DLE><CAN>
    Other,   ///< <DLE> and a byte without a meaning: most likely an unshielded 0x10
    Full     ///< the byte was lost for lack of room
  };

  /// Appends the bytes to `played` as they are played, unshielded.
  Playback(ModemCoding coding, int rate, std::size_t capacity, std::vector<std::uint8_t>& played);

  Said Put(std::uint8_t byte);
  std::size_t Room() const { return capacity_ - buffer_.size(); }
  /// Whether any audio has come.
  bool Begun() const { return begun_; }
  bool Ended() const { return ended_; }
  /// Whether everything up to <DLE><ETX> has been played.
  bool Over() const { return ended_ && flushed_ && line_.empty(); }

  /// Returns the line's next samples, 8000 a second. True when the buffer has just run empty.
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
  std::int64_t passed_ = 0;  ///< of the modem's samples, including missing ones
  bool dle_ = false;
  bool begun_ = false;
  bool dry_ = false;
  bool ended_ = false;
  bool flushed_ = false;
};

/// Audio from the line to the host: in the modem's format, shielded, in blocks of uneven size. One per +VRX.
class ReceiveStream {
 public:
  /// Appends the bytes to `sent` as they are sent, before shielding. `pairs`: two 0x10 in a row become
  /// <DLE><SUB>.
  ReceiveStream(ModemCoding coding, int rate, bool pairs, HostPort& port, std::vector<std::uint8_t>& sent);

  /// The line's next samples, 8000 a second.
  void Put(std::span<const std::int16_t> samples);

  /// Sends the incomplete block.
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
  std::size_t enough_ = 0;  ///< size of the present block, bytes
};

/// Reports silence in received audio, once each time: 's' when there was nothing else before, 'q' after other
/// audio.
class SilenceWatch {
 public:
  SilenceWatch() = default;
  /// Reports a silence of `samples`, 8000 a second; 0: never.
  explicit SilenceWatch(std::int64_t samples) : enough_(samples) {}

  std::optional<char> Put(std::span<const std::int16_t> samples);

 private:
  std::int64_t enough_ = 0;
  std::int64_t silent_ = 0;
  bool heard_ = false;
};

}  // namespace orven::emulator
