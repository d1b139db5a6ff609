// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QAudioFormat>
#include <QByteArray>
#include <cstdint>
#include <span>
#include <vector>

#include "adapters/audio/resampler.h"

namespace orven {

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
