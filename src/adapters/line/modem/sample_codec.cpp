// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/line/modem/sample_codec.h"

#include <spandsp.h>

#include <algorithm>

#include "platform/audio_device.h"

namespace orven {
namespace {

/// 8-bit samples are the upper half of 16-bit ones, with 0x80 for silence.
constexpr int kHalf = 0x80;

std::uint8_t ToUnsigned8(std::int16_t sample) {
  const int rounded = (sample + kHalf) >> 8;
  return static_cast<std::uint8_t>(std::min(rounded, kHalf - 1) + kHalf);
}

std::int16_t FromUnsigned8(std::uint8_t byte) {
  return static_cast<std::int16_t>((byte - kHalf) * 256);
}

std::int16_t FromBytes(std::uint8_t low, std::uint8_t high) {
  return static_cast<std::int16_t>(low | (high << 8));
}

}  // namespace

RateConverter::RateConverter(int from, int to) {
  if (from != to) resampler_.emplace(from, to);
}

std::span<const std::int16_t> RateConverter::Convert(std::span<const std::int16_t> samples) {
  if (!resampler_ || samples.empty()) return samples;
  input_.resize(samples.size());
  src_short_to_float_array(samples.data(), input_.data(), static_cast<int>(samples.size()));
  const auto converted = resampler_->Process(input_, false);
  output_.resize(converted.size());
  src_float_to_short_array(converted.data(), output_.data(), static_cast<int>(converted.size()));
  return output_;
}

SampleEncoder::SampleEncoder(const VoiceFormat& format)
    : kind_(format.kind), rate_(kSampleRate, format.rate) {}

void SampleEncoder::Encode(std::span<const std::int16_t> samples, std::vector<std::uint8_t>& bytes) {
  const auto converted = rate_.Convert(samples);
  bytes.reserve(bytes.size() + converted.size_bytes());
  for (const std::int16_t sample : converted) {
    switch (kind_) {
      case SampleKind::Linear16:
        bytes.push_back(static_cast<std::uint8_t>(sample & 0xFF));
        bytes.push_back(static_cast<std::uint8_t>((sample >> 8) & 0xFF));
        break;
      case SampleKind::MuLaw: bytes.push_back(linear_to_ulaw(sample)); break;
      case SampleKind::Unsigned8: bytes.push_back(ToUnsigned8(sample)); break;
    }
  }
}

SampleDecoder::SampleDecoder(const VoiceFormat& format)
    : kind_(format.kind), rate_(format.rate, kSampleRate) {}

void SampleDecoder::Decode(std::span<const std::uint8_t> bytes, std::vector<std::int16_t>& samples) {
  modem_.clear();
  for (const std::uint8_t byte : bytes) {
    switch (kind_) {
      case SampleKind::Linear16:
        if (low_) modem_.push_back(FromBytes(*low_, byte));
        low_ = low_ ? std::nullopt : std::optional(byte);
        break;
      case SampleKind::MuLaw: modem_.push_back(ulaw_to_linear(byte)); break;
      case SampleKind::Unsigned8: modem_.push_back(FromUnsigned8(byte)); break;
    }
  }
  const auto line = rate_.Convert(modem_);
  samples.insert(samples.end(), line.begin(), line.end());
}

}  // namespace orven
