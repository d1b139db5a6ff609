// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/line/sip/codec.h"

#include <opus.h>
#include <spandsp.h>

#include <algorithm>
#include <iterator>
#include <new>

namespace orven {
namespace {

constexpr int kRate = 8000;

/// Of the two bands of G.722 the lower one is the telephone band, so the upper one is left out. Nothing below
/// 3.4 kHz is changed by more than 0.4 dB.
constexpr int kG722BitRate = 64'000;
constexpr int kG722Options = G722_SAMPLE_RATE_8000;

/// Less than G.711 takes. At this rate a greeting is coded as music: 30 dB above the error and 0.13 s of work
/// a minute, where the codec for speech reaches 13 dB and takes 0.3 s.
constexpr int kOpusBitRate = 48'000;
/// Half of the most work: more is hardly heard.
constexpr int kOpusComplexity = 5;

/// The longest packet: 120 ms (RFC 6716, section 3.2.5).
constexpr int kMostOpusSamples = kRate * 120 / 1000;
/// Opus counts audio in units of 2.5 ms.
constexpr std::size_t kOpusUnit = kRate / 400;
/// The most bytes of a frame (RFC 6716, section 3.2.1).
constexpr std::size_t kMostOpusBytes = 1'275;

opus_int32 Size(std::span<const std::uint8_t> payload) {
  return static_cast<opus_int32>(payload.size());
}

/// Appends `count` samples of `payload`, or made up without one; silence when it is damaged.
void DecodeOpus(OpusDecoder* decoder, std::span<const std::uint8_t> payload, std::size_t count, bool repeated,
                std::vector<std::int16_t>& samples) {
  const std::size_t begin = samples.size();
  samples.resize(begin + count);
  const int decoded = opus_decode(decoder, payload.empty() ? nullptr : payload.data(), Size(payload),
                                  samples.data() + begin, static_cast<int>(count), repeated ? 1 : 0);
  std::fill(samples.begin() + static_cast<std::ptrdiff_t>(begin) + std::max(decoded, 0), samples.end(), 0);
}

OpusDecoder* NewOpusDecoder() {
  OpusDecoder* const made = opus_decoder_create(kRate, 1, nullptr);
  return made != nullptr ? made : throw std::bad_alloc();
}

OpusEncoder* NewOpusEncoder() {
  OpusEncoder* const made = opus_encoder_create(kRate, 1, OPUS_APPLICATION_AUDIO, nullptr);
  if (made == nullptr) throw std::bad_alloc();
  (void)opus_encoder_ctl(made, OPUS_SET_BITRATE(kOpusBitRate));
  (void)opus_encoder_ctl(made, OPUS_SET_COMPLEXITY(kOpusComplexity));
  return made;
}

}  // namespace

int ClockRate(Codec codec) {
  return codec == Codec::kOpus ? 48'000 : 8'000;
}

std::size_t SamplesIn(Codec codec, std::span<const std::uint8_t> payload) {
  if (codec != Codec::kOpus) return payload.size();
  if (payload.empty()) return 0;
  const int samples = opus_packet_get_nb_samples(payload.data(), Size(payload), kRate);
  return samples > 0 && samples <= kMostOpusSamples ? static_cast<std::size_t>(samples) : 0;
}

Decoder::Decoder() : g722_(nullptr, g722_decode_free), opus_(nullptr, opus_decoder_destroy) {}

void Decoder::Decode(Codec codec, std::span<const std::uint8_t> payload, std::vector<std::int16_t>& samples) {
  const auto append = [&](auto decode) {
    std::transform(payload.begin(), payload.end(), std::back_inserter(samples), decode);
  };
  switch (codec) {
    case Codec::kMuLaw: return append(ulaw_to_linear);
    case Codec::kALaw: return append(alaw_to_linear);
    case Codec::kG722: {
      if (g722_ == nullptr) g722_.reset(g722_decode_init(nullptr, kG722BitRate, kG722Options));
      const std::size_t begin = samples.size();
      samples.resize(begin + payload.size());
      (void)g722_decode(g722_.get(), samples.data() + begin, payload.data(),
                        static_cast<int>(payload.size()));
      return;
    }
    case Codec::kOpus:
      if (opus_ == nullptr) opus_.reset(NewOpusDecoder());
      return DecodeOpus(opus_.get(), payload, SamplesIn(codec, payload), false, samples);
  }
}

bool Decoder::Recover(Codec codec, std::span<const std::uint8_t> next, std::size_t missing,
                      std::vector<std::int16_t>& samples) {
  if (codec != Codec::kOpus || opus_ == nullptr || missing % kOpusUnit != 0) return false;
  // Only the last packet is repeated. What was before it is made up, as much at a time as a packet may hold.
  const std::size_t repeated = std::min(missing, SamplesIn(codec, next));
  for (std::size_t rest = missing - repeated; rest > 0;) {
    const std::size_t piece = std::min<std::size_t>(rest, kMostOpusSamples);
    DecodeOpus(opus_.get(), {}, piece, false, samples);
    rest -= piece;
  }
  if (repeated > 0) DecodeOpus(opus_.get(), next, repeated, true, samples);
  return true;
}

Encoder::Encoder() : g722_(nullptr, g722_encode_free), opus_(nullptr, opus_encoder_destroy) {}

std::span<const std::uint8_t> Encoder::Encode(Codec codec, std::span<const std::int16_t> block) {
  const int count = static_cast<int>(block.size());
  payload_.resize(std::max(block.size(), kMostOpusBytes));
  int size = count;
  switch (codec) {
    case Codec::kMuLaw: std::ranges::transform(block, payload_.begin(), linear_to_ulaw); break;
    case Codec::kALaw: std::ranges::transform(block, payload_.begin(), linear_to_alaw); break;
    case Codec::kG722:
      if (g722_ == nullptr) g722_.reset(g722_encode_init(nullptr, kG722BitRate, kG722Options));
      size = g722_encode(g722_.get(), payload_.data(), block.data(), count);
      break;
    case Codec::kOpus:
      if (opus_ == nullptr) opus_.reset(NewOpusEncoder());
      size = opus_encode(opus_.get(), block.data(), count, payload_.data(),
                         static_cast<opus_int32>(kMostOpusBytes));
      break;
  }
  return {payload_.data(), static_cast<std::size_t>(std::max(size, 0))};
}

}  // namespace orven
