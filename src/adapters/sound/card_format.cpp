// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/sound/card_format.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>

#include "platform/audio_device.h"

namespace orven {
namespace {

/// Keeps the telephone's band whole (90 % of 4 kHz) without audible images, for a few per mille of a core.
constexpr int kConverter = SRC_SINC_MEDIUM_QUALITY;

constexpr float kFullScale = 32768.0F;

/// Frames the resampler may give beyond the exact proportion: what it held back before.
constexpr std::size_t kSlack = 4096;

QAudioFormat TelephoneFormat() {
  QAudioFormat format;
  format.setSampleRate(kSampleRate);
  format.setChannelCount(1);
  format.setSampleFormat(QAudioFormat::Int16);
  return format;
}

template <class Number>
void AppendRaw(QByteArray& bytes, Number number) {
  char raw[sizeof number];
  std::memcpy(raw, &number, sizeof number);
  bytes.append(raw, sizeof number);
}

/// A sample of `Number`, whose full scale is its own.
template <class Number>
Number Quantised(float value) {
  const double full = static_cast<double>(std::numeric_limits<Number>::max()) + 1;
  return static_cast<Number>(std::llrint(std::clamp(value * full, -full, full - 1)));
}

}  // namespace

QAudioFormat CardFormatOf(const QAudioDevice& device) {
  const QAudioFormat telephone = TelephoneFormat();
  return device.isFormatSupported(telephone) ? telephone : device.preferredFormat();
}

CardConverter::CardConverter(const QAudioFormat& format)
    : format_(format),
      ratio_(static_cast<double>(format.sampleRate()) / kSampleRate),
      valid_(format.isValid() && src_is_valid_ratio(ratio_) != 0) {
  if (!valid_ || format.sampleRate() == kSampleRate) return;
  int error = 0;
  resampler_.reset(src_new(kConverter, 1, &error));
  valid_ = resampler_ != nullptr;
}

QByteArray CardConverter::Process(std::span<const std::int16_t> samples, bool last) {
  if (format_ == TelephoneFormat())
    return {reinterpret_cast<const char*>(samples.data()), static_cast<qsizetype>(samples.size_bytes())};
  const auto mono = Resample(samples, last);
  QByteArray bytes;
  bytes.reserve(format_.bytesForFrames(static_cast<qint32>(mono.size())));
  for (const float value : mono)
    for (int channel = 0; channel < format_.channelCount(); ++channel) Append(bytes, value);
  return bytes;
}

std::span<const float> CardConverter::Resample(std::span<const std::int16_t> samples, bool last) {
  input_.resize(samples.size());
  std::transform(samples.begin(), samples.end(), input_.begin(),
                 [](std::int16_t sample) { return static_cast<float>(sample) / kFullScale; });
  if (!resampler_) return input_;
  output_.resize(static_cast<std::size_t>(static_cast<double>(samples.size()) * ratio_) + kSlack);
  SRC_DATA step{};
  step.data_in = input_.data();
  step.input_frames = static_cast<long>(input_.size());
  step.data_out = output_.data();
  step.output_frames = static_cast<long>(output_.size());
  step.src_ratio = ratio_;
  step.end_of_input = last ? 1 : 0;
  if (src_process(resampler_.get(), &step) != 0) return {};
  return std::span(output_).first(static_cast<std::size_t>(step.output_frames_gen));
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

}  // namespace orven
