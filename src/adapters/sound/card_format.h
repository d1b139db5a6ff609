// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QAudioDevice>
#include <QAudioFormat>
#include <QByteArray>
#include <cstdint>
#include <span>
#include <vector>

#include "adapters/audio/resampler.h"

namespace orven {

/// The format of telephone audio: 8000 samples a second, mono, 16-bit.
QAudioFormat TelephoneFormat();

/// The telephone's format if `device` supports it, else the format that it prefers.
QAudioFormat CardFormatOf(const QAudioDevice& device);

/// Converts telephone audio to a card's format: resampled if the rate differs, the same on every channel. If
/// that is the telephone's own format, the audio is passed on unchanged.
class CardConverter {
 public:
  explicit CardConverter(const QAudioFormat& format);

  /// False for an unknown kind of sample, or a rate more than 256 times higher or lower than the telephone's.
  bool Valid() const { return format_.isValid() && resampler_.Valid(); }

  /// The next samples in the card's format. The resampler holds some back until later calls.
  QByteArray Convert(std::span<const std::int16_t> samples) { return Process(samples, false); }

  /// What is still held back, at the end of the audio.
  QByteArray Flush() { return Process({}, true); }

 private:
  QByteArray Process(std::span<const std::int16_t> samples, bool last);
  void Append(QByteArray& bytes, float value) const;

  QAudioFormat format_;
  Resampler resampler_;
  std::vector<float> input_;
};

/// Converts audio of an input to telephone audio: the channels mixed, resampled if the rate differs. Audio in
/// the telephone's own format is passed on unchanged.
class CaptureConverter {
 public:
  explicit CaptureConverter(const QAudioFormat& format);

  /// False as for CardConverter; Convert must not be called then.
  bool Valid() const { return format_.isValid() && resampler_.Valid(); }

  /// The next samples, valid until the next call; `bytes` may end within a frame. The resampler holds back
  /// up to 6 ms until the next call.
  std::span<const std::int16_t> Convert(const QByteArray& bytes);

 private:
  void Mix(std::span<const char> frames);
  float Sample(const char* at) const;

  QAudioFormat format_;
  Resampler resampler_;
  QByteArray rest_;           ///< of a frame, and what is being converted
  std::vector<float> mixed_;  ///< mono, at the input's rate
  std::vector<std::int16_t> samples_;
};

}  // namespace orven
