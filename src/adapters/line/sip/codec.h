// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <utility>
#include <vector>

struct g722_decode_state_s;
struct g722_encode_state_s;
struct OpusDecoder;
struct OpusEncoder;

namespace orven {

/// The telephone's two codecs (ITU-T G.711), one byte a sample, and two with a wider band (ITU-T G.722, RFC
/// 6716). Recordings have the telephone band, so the wide ones are decoded to it.
enum class Codec : std::uint8_t { kMuLaw, kALaw, kG722, kOpus };

/// All codecs with their names in descriptions, in which letters of either case are the same.
inline constexpr std::array kCodecs{std::pair{Codec::kMuLaw, "PCMU"}, std::pair{Codec::kALaw, "PCMA"},
                                    std::pair{Codec::kG722, "G722"}, std::pair{Codec::kOpus, "opus"}};

/// Units of the RTP timestamp in a second: 8000, for G.722 too, although it has twice as many samples (RFC
/// 3551, sections 4.5.2 and 6); 48,000 for Opus (RFC 7587, section 4.1).
int ClockRate(Codec codec);

/// How many samples at 8000 Hz the payload of a packet becomes; 0 when it holds none.
std::size_t SamplesIn(Codec codec, std::span<const std::uint8_t> payload);

/// Turns a stream's payloads, in order, into samples at 8000 Hz. For one thread.
class Decoder {
 public:
  Decoder();

  /// Appends SamplesIn(codec, payload) samples to `samples`.
  void Decode(Codec codec, std::span<const std::uint8_t> payload, std::vector<std::int16_t>& samples);

  /// Appends `missing` samples for what was lost before `next`, as far as the codec knows: Opus may repeat in
  /// a packet what the one before it said. False if it knows nothing; then nothing is appended.
  bool Recover(Codec codec, std::span<const std::uint8_t> next, std::size_t missing,
               std::vector<std::int16_t>& samples);

 private:
  std::unique_ptr<g722_decode_state_s, int (*)(g722_decode_state_s*)> g722_;
  std::unique_ptr<OpusDecoder, void (*)(OpusDecoder*)> opus_;  ///< absent until its first packet
};

/// Turns blocks at 8000 Hz into the payloads of a stream. For one thread.
class Encoder {
 public:
  Encoder();

  /// The payload of `block`, of 20 ms; of any length for the other codecs than Opus. Valid until the next
  /// call.
  std::span<const std::uint8_t> Encode(Codec codec, std::span<const std::int16_t> block);

 private:
  std::unique_ptr<g722_encode_state_s, int (*)(g722_encode_state_s*)> g722_;
  std::unique_ptr<OpusEncoder, void (*)(OpusEncoder*)> opus_;  ///< absent until its first block
  std::vector<std::uint8_t> payload_;
};

}  // namespace orven
