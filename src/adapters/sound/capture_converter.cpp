// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/sound/capture_converter.h"

#include <algorithm>
#include <cmath>
#include <cstring>

#include "adapters/sound/card_format.h"
#include "platform/audio_device.h"

namespace orven {
namespace {

constexpr float kFullScale = 32768.0F;

template <class Number>
Number Raw(const char* at) {
  Number number;
  std::memcpy(&number, at, sizeof number);
  return number;
}

std::int16_t Quantised(float value) {
  return static_cast<std::int16_t>(std::lrint(std::clamp(value * kFullScale, -kFullScale, kFullScale - 1)));
}

}  // namespace

CaptureConverter::CaptureConverter(const QAudioFormat& format)
    : format_(format), resampler_(format.sampleRate(), kSampleRate) {}

std::span<const std::int16_t> CaptureConverter::Convert(const QByteArray& bytes) {
  const auto frame_bytes = static_cast<std::size_t>(format_.bytesPerFrame());
  if (frame_bytes == 0) return {};
  rest_ += bytes;
  const auto frames = static_cast<std::size_t>(rest_.size()) / frame_bytes;
  const auto whole = frames * frame_bytes;
  if (frames == 0) return {};
  if (format_ == TelephoneFormat()) {
    samples_.resize(frames);
    std::memcpy(samples_.data(), rest_.constData(), whole);
  } else {
    Mix(std::span(rest_.constData(), whole));
    const auto mono = resampler_.Process(mixed_, false);
    samples_.resize(mono.size());
    std::transform(mono.begin(), mono.end(), samples_.begin(), Quantised);
  }
  rest_.remove(0, static_cast<qsizetype>(whole));
  return samples_;
}

void CaptureConverter::Mix(std::span<const char> frames) {
  const auto size = static_cast<std::size_t>(format_.bytesPerSample());
  const auto channels = static_cast<std::size_t>(format_.channelCount());
  mixed_.assign(frames.size() / (size * channels), 0.0F);
  for (std::size_t i = 0; i < mixed_.size() * channels; ++i)
    mixed_[i / channels] += Sample(&frames[i * size]) / static_cast<float>(channels);
}

/// Full scale is 1.
float CaptureConverter::Sample(const char* at) const {
  switch (format_.sampleFormat()) {
    case QAudioFormat::UInt8: return static_cast<float>(Raw<std::uint8_t>(at) - 128) / 128.0F;
    case QAudioFormat::Int16: return static_cast<float>(Raw<std::int16_t>(at)) / kFullScale;
    case QAudioFormat::Int32: return static_cast<float>(Raw<std::int32_t>(at)) / 2147483648.0F;
    default: return Raw<float>(at);
  }
}

}  // namespace orven
