// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/sound/card_format.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>

#include "platform/audio_device.h"

namespace orven {
namespace {

constexpr float kFullScale = 32768.0F;

template <class Number>
void AppendRaw(QByteArray& bytes, Number number) {
  char raw[sizeof number];
  std::memcpy(raw, &number, sizeof number);
  bytes.append(raw, sizeof number);
}

/// `value` (full scale 1) as an integer of type `Number`.
template <class Number>
Number Quantised(float value) {
  const double full = static_cast<double>(std::numeric_limits<Number>::max()) + 1;
  return static_cast<Number>(std::llrint(std::clamp(value * full, -full, full - 1)));
}

template <class Number>
Number Raw(const char* at) {
  Number number;
  std::memcpy(&number, at, sizeof number);
  return number;
}

}  // namespace

QAudioFormat TelephoneFormat() {
  QAudioFormat format;
  format.setSampleRate(kSampleRate);
  format.setChannelCount(1);
  format.setSampleFormat(QAudioFormat::Int16);
  return format;
}

QAudioFormat CardFormatOf(const QAudioDevice& device) {
  const QAudioFormat telephone = TelephoneFormat();
  return device.isFormatSupported(telephone) ? telephone : device.preferredFormat();
}

CardConverter::CardConverter(const QAudioFormat& format)
    : format_(format), resampler_(kSampleRate, format.sampleRate()) {}

QByteArray CardConverter::Process(std::span<const std::int16_t> samples, bool last) {
  if (format_ == TelephoneFormat())
    return {reinterpret_cast<const char*>(samples.data()), static_cast<qsizetype>(samples.size_bytes())};
  input_.resize(samples.size());
  std::transform(samples.begin(), samples.end(), input_.begin(),
                 [](std::int16_t sample) { return static_cast<float>(sample) / kFullScale; });
  const auto mono = resampler_.Process(input_, last);
  QByteArray bytes;
  bytes.reserve(format_.bytesForFrames(static_cast<qint32>(mono.size())));
  for (const float value : mono)
    for (int channel = 0; channel < format_.channelCount(); ++channel) Append(bytes, value);
  return bytes;
}

void CardConverter::Append(QByteArray& bytes, float value) const {
  switch (format_.sampleFormat()) {
    case QAudioFormat::UInt8:
      return AppendRaw(bytes, static_cast<std::uint8_t>(Quantised<std::int8_t>(value) + 128));
    case QAudioFormat::Int16: return AppendRaw(bytes, Quantised<std::int16_t>(value));
    case QAudioFormat::Int32: return AppendRaw(bytes, Quantised<std::int32_t>(value));
    default: return AppendRaw(bytes, value);
  }
}

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
    std::transform(mono.begin(), mono.end(), samples_.begin(), Quantised<std::int16_t>);
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
