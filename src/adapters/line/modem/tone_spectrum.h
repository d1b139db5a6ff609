// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <spandsp.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>

namespace orven {

/// The analysis of 48 ms of audio.
struct ToneFrame {
  float level = 0;    ///< of all of it, dBm0 (ITU-T G.711: a sine at full scale has 3.14)
  bool tone = false;  ///< nearly all its energy is in one or two sines of a telephone network
  float low = 0;      ///< their frequencies, Hz
  float high = 0;     ///< 0: there is only one
};

/// Finds one or two sines between 320 and 660 Hz, the range of network tones (ITU-T E.180), in blocks of the
/// received audio. Mains hum and a constant offset do not matter.
class ToneSpectrum {
 public:
  /// Samples from frame to frame, 16 ms; a frame covers the latest three blocks.
  static constexpr std::size_t kBlock = 128;

  ToneSpectrum();

  ToneFrame Next(std::span<const std::int16_t, kBlock> block);

 private:
  static constexpr std::size_t kWindow = 3 * kBlock;
  static constexpr std::size_t kFirstBin = 14;  ///< of 8000 Hz / kWindow = 20.8 Hz each: 292 Hz
  static constexpr std::size_t kBins = 20;      ///< up to 688 Hz: a sine fills two bins on either side
  using Powers = std::array<float, kBins>;

  void Shift(std::span<const std::int16_t, kBlock> block);
  float Measure(Powers& powers);

  std::array<float, kWindow> shape_;  ///< Hann's window
  std::array<float, kWindow> heard_{};
  std::array<goertzel_state_t, kBins> bins_{};
  float before_ = 0;  ///< the latest sample, before and after the offset filter
  float clean_ = 0;
};

}  // namespace orven
