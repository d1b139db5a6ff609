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

/// 8000 samples a second, mono, 16-bit.
QAudioFormat TelephoneFormat();

/// The telephone's own format where `device` takes it, else the format that it prefers.
QAudioFormat CardFormatOf(const QAudioDevice& device);

/// Makes telephone sound (8000 samples a second, mono, 16-bit) into a card's format: resampled where
/// the rate differs, the same on every channel. What needs no conversion passes bit by bit.
class CardConverter {
 public:
  explicit CardConverter(const QAudioFormat& format);

  /// False for a format that cannot be made (unknown kind of sample, or a rate that is more than 256
  /// times the telephone's or less than a 256th).
  bool Valid() const { return format_.isValid() && resampler_.Valid(); }

  /// The next samples in the card's format. The resampler holds some back until later calls.
  QByteArray Convert(std::span<const std::int16_t> samples) { return Process(samples, false); }

  /// What is still held back, at the end of the sound.
  QByteArray Flush() { return Process({}, true); }

 private:
  QByteArray Process(std::span<const std::int16_t> samples, bool last);
  void Append(QByteArray& bytes, float value) const;

  QAudioFormat format_;
  Resampler resampler_;
  std::vector<float> input_;
};

/// Makes the sound of an input into telephone sound (8000 samples a second, mono, 16-bit): the channels
/// mixed, resampled where the rate differs. What needs no conversion passes bit by bit.
class CaptureConverter {
 public:
  explicit CaptureConverter(const QAudioFormat& format);

  /// False for a format that cannot be converted; see CardConverter. Nothing comes of it then.
  bool Valid() const { return format_.isValid() && resampler_.Valid(); }

  /// The next samples; `bytes` may end within a frame. The resampler holds up to 6 ms back
  /// until the next call. Good until then.
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
