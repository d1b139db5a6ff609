// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/line/modem/tone_spectrum.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <numeric>
#include <utility>

namespace orven {
namespace {

constexpr float kRate = 8000;

/// The mean square of a sine of 0 dBm0, 3.14 dB below full scale (ITU-T G.711).
const float kZeroLevel = 32768.0F * 32768.0F / 2 * std::pow(10.0F, -0.314F);

/// High-pass filter at 60 Hz.
constexpr float kOffsetFilter = 0.95F;

/// The least share of a tone's energy; a signal-to-noise ratio of 8 dB.
constexpr float kPure = 0.86F;

/// The least power of a second tone relative to the first; 12 dB, as networks allow 6 (ITU-T E.180).
constexpr float kSecond = 0.06F;

/// Neighbouring bins on each side that a sine fills.
constexpr std::size_t kSpread = 2;

/// Sum of the bins that a sine in `peak` fills.
template <class Powers>
float Lobe(const Powers& powers, std::size_t peak) {
  const auto first = peak < kSpread ? 0 : peak - kSpread;
  const auto last = std::min(peak + kSpread + 1, powers.size());
  return std::accumulate(powers.begin() + first, powers.begin() + last, 0.0F);
}

/// The exact position of a sine in bin `peak`, from its neighbours; exact for Hann's window.
template <class Powers>
float Position(const Powers& powers, std::size_t peak) {
  const float above = std::sqrt(powers[peak + 1] / powers[peak]);
  const float below = std::sqrt(powers[peak - 1] / powers[peak]);
  const float ratio = std::max(above, below);
  const float offset = (2 * ratio - 1) / (ratio + 1);
  return static_cast<float>(peak) + (above > below ? offset : -offset);
}

/// The strongest bin with two neighbours that a sine in `except` does not fill.
template <class Powers>
std::size_t Peak(const Powers& powers, std::size_t except) {
  std::size_t peak = 0;
  for (std::size_t i = 1; i + 1 < powers.size(); ++i) {
    const auto distance = i > except ? i - except : except - i;
    if (distance > kSpread && (peak == 0 || powers[i] > powers[peak])) peak = i;
  }
  return peak;
}

}  // namespace

ToneSpectrum::ToneSpectrum() {
  for (std::size_t i = 0; i < kWindow; ++i) {
    const auto phase = 2 * std::numbers::pi_v<float> * (static_cast<float>(i) + 0.5F) / kWindow;
    shape_[i] = (1 - std::cos(phase)) / 2;
  }
  for (std::size_t i = 0; i < kBins; ++i) {
    goertzel_descriptor_t bin{};
    make_goertzel_descriptor(&bin, kRate * static_cast<float>(kFirstBin + i) / kWindow, kWindow);
    goertzel_init(&bins_[i], &bin);
  }
}

ToneFrame ToneSpectrum::Next(std::span<const std::int16_t, kBlock> block) {
  Shift(block);
  Powers powers{};
  const float all = Measure(powers);
  constexpr float kShapePower = 3.0F / 8;
  ToneFrame frame;
  frame.level = 10 * std::log10(std::max(all, 1.0F) / (kWindow * kShapePower * kZeroLevel));
  const auto first = Peak(powers, 2 * kBins);
  const auto second = Peak(powers, first);
  const bool two = powers[second] > kSecond * powers[first];
  const float tones = Lobe(powers, first) + (two ? Lobe(powers, second) : 0);
  frame.tone = all > 1 && tones > kPure * all * kWindow;
  if (!frame.tone) return frame;
  const auto hertz = [&powers](std::size_t bin) {
    return (Position(powers, bin) + kFirstBin) * kRate / kWindow;
  };
  frame.low = hertz(first);
  frame.high = two ? hertz(second) : 0;
  if (two && frame.low > frame.high) std::swap(frame.low, frame.high);
  return frame;
}

void ToneSpectrum::Shift(std::span<const std::int16_t, kBlock> block) {
  std::copy(heard_.begin() + kBlock, heard_.end(), heard_.begin());
  auto out = heard_.end() - kBlock;
  for (const std::int16_t sample : block) {
    clean_ = static_cast<float>(sample) - before_ + kOffsetFilter * clean_;
    before_ = sample;
    *out++ = clean_;
  }
}

/// Sets the powers of the bins and returns the energy of all audio: a sine's bins add up to that times
/// kWindow.
float ToneSpectrum::Measure(Powers& powers) {
  float energy = 0;
  for (std::size_t i = 0; i < kWindow; ++i) {
    const float shaped = heard_[i] * shape_[i];
    energy += shaped * shaped;
    for (auto& bin : bins_) goertzel_samplex(&bin, shaped);
  }
  for (std::size_t i = 0; i < kBins; ++i) powers[i] = goertzel_result(&bins_[i]);
  return energy;
}

}  // namespace orven
