// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/line/modem/hang_up_detector.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdlib>
#include <deque>
#include <utility>

#include "adapters/line/modem/tone_spectrum.h"
#include "platform/audio_device.h"

namespace orven {
namespace {

/// Distinguishes the tones that end a call from similar sounds by their regularity: busy and congestion tones
/// repeat exactly, in the timing of any country; the dial tone is constant.
class ToneCadence {
 public:
  enum class Heard : std::uint8_t { Nothing, Busy, Dial };

  /// Takes the next frame.
  Heard Next(const ToneFrame& frame);

 private:
  /// A tone from its beginning to its end, in frames.
  struct Burst {
    int gap = 0;  ///< before it
    int length = 0;
    ToneFrame tone;
  };

  bool Continues(const ToneFrame& frame) const;
  bool Steady(float decibels, float hertz) const;
  bool IsDialTone() const;
  void EndBurst();
  void Forget();
  bool Repeats(std::size_t period) const;
  static bool Alike(const Burst& a, const Burst& b);

  std::deque<ToneFrame> tone_;  ///< the present burst
  std::deque<Burst> bursts_;    ///< the bursts before
  int length_ = 0;              ///< of the present burst
  int gap_ = 0;                 ///< since the latest burst
  int quiet_ = 0;               ///< silent frames within the gap
};

// Frames are 16 ms apart and cover 48 ms, so that a tone's edges fill two frames on either side.
constexpr int kEdge = 2;

/// Networks' tones are on and off for 100 to 750 ms (ITU-T E.180 supplement 2).
constexpr int kShortest = 4;
constexpr int kLongest = 50;

/// A dial tone is recognised after 3 s.
constexpr std::size_t kDialTone = 188;

/// Tones are sent at -10 dBm0 or so and lose up to 25 dB on the way (ITU-T E.180, Q.552).
constexpr float kWeakest = -38;

/// The drop in level between two bursts, dB, for 2 frames at least, not counting the edges of both.
constexpr float kPause = 8;
constexpr int kShortestPause = 2;
constexpr int kPauseEdges = 4 * kEdge;

// How far a generated tone may deviate from its level and pitch in the middle, given 8-bit samples and a
// line's noise; voices vary more. A modem with automatic gain changes the level within each burst.
constexpr float kDialLevel = 1;     // dB
constexpr float kBurstLevel = 5;    // dB
constexpr float kSteadyPitch = 5;   // Hz
constexpr float kSamePitch = 6;     // Hz, of two bursts
constexpr float kSameLevel = 2.5F;  // dB
constexpr int kSameLength = 2;      // frames

/// Some congestion tones are groups of two or three bursts of different lengths or levels.
constexpr std::size_t kLongestGroup = 3;

bool SamePitch(const ToneFrame& a, const ToneFrame& b, float hertz) {
  return std::abs(a.low - b.low) <= hertz && std::abs(a.high - b.high) <= hertz;
}

/// 400, 425, 440, 450, 480 or 500 Hz, or any two, most often 480 and 620 (ITU-T E.180 supplement 2).
bool IsBusyPitch(const ToneFrame& tone) {
  return tone.high > 0 || (tone.low > 380 && tone.low < 515);
}

/// 400, 425, 440, 450 Hz, or 350 with one of them (ITU-T E.180 supplement 2).
bool IsDialPitch(const ToneFrame& tone) {
  if (tone.high == 0) return tone.low > 385 && tone.low < 465;
  return tone.low > 325 && tone.low < 365 && tone.high > 385 && tone.high < 465;
}

ToneCadence::Heard ToneCadence::Next(const ToneFrame& frame) {
  if (Continues(frame)) {
    tone_.push_back(frame);
    if (tone_.size() > kDialTone) tone_.pop_front();
    ++length_;
    return IsDialTone() ? Heard::Dial : Heard::Nothing;
  }
  EndBurst();
  if (frame.tone && frame.level > kWeakest) {
    tone_.push_back(frame);
    length_ = 1;
  } else {
    ++gap_;
    if (!bursts_.empty() && frame.level < bursts_.back().tone.level - kPause) ++quiet_;
    if (gap_ > kLongest || gap_ - quiet_ > kPauseEdges) Forget();
  }
  for (std::size_t period = 1; period <= kLongestGroup; ++period) {
    if (Repeats(period)) return Heard::Busy;
  }
  return Heard::Nothing;
}

bool ToneCadence::Continues(const ToneFrame& frame) const {
  return frame.tone && frame.level > kWeakest && !tone_.empty() &&
         SamePitch(frame, tone_.back(), kSteadyPitch);
}

/// Whether the present burst, except at its edges, never deviates more than that from its middle.
bool ToneCadence::Steady(float decibels, float hertz) const {
  const auto& middle = tone_[tone_.size() / 2];
  const auto moved = [&](const ToneFrame& frame) {
    return std::abs(frame.level - middle.level) > decibels || !SamePitch(frame, middle, hertz);
  };
  return std::none_of(tone_.begin() + kEdge, tone_.end() - kEdge, moved);
}

bool ToneCadence::IsDialTone() const {
  return tone_.size() == kDialTone && IsDialPitch(tone_.back()) && Steady(kDialLevel, kSteadyPitch);
}

void ToneCadence::EndBurst() {
  if (tone_.empty()) return;
  const auto tone = tone_[tone_.size() / 2];
  const bool glitch = length_ < kShortest;
  if (glitch) {
    gap_ += length_;
  } else if (length_ > kLongest || !IsBusyPitch(tone) || !Steady(kBurstLevel, kSteadyPitch)) {
    Forget();
  } else {
    if (quiet_ < kShortestPause) Forget();
    bursts_.push_back({gap_, length_, tone});
    if (bursts_.size() > 2 * kLongestGroup + 2) bursts_.pop_front();
    gap_ = quiet_ = 0;
  }
  tone_.clear();
}

void ToneCadence::Forget() {
  bursts_.clear();
  gap_ = quiet_ = 0;
}

/// Whether the latest bursts repeat in groups of `period`: two equal groups and two more bursts.
bool ToneCadence::Repeats(std::size_t period) const {
  const auto needed = 2 * period + 2;
  if (bursts_.size() < needed) return false;
  const auto first = bursts_.end() - static_cast<std::ptrdiff_t>(needed);
  for (auto burst = first; burst + static_cast<std::ptrdiff_t>(period) != bursts_.end(); ++burst) {
    const auto& other = burst[static_cast<std::ptrdiff_t>(period)];
    const bool gaps = burst == first || std::abs(burst->gap - other.gap) <= kSameLength;
    if (!gaps || !Alike(*burst, other) || !SamePitch(burst->tone, first->tone, kSamePitch)) return false;
  }
  return true;
}

bool ToneCadence::Alike(const Burst& a, const Burst& b) {
  return std::abs(a.length - b.length) <= kSameLength &&
         std::abs(a.tone.level - b.tone.level) <= kSameLevel && SamePitch(a.tone, b.tone, kSamePitch);
}

constexpr std::size_t kBlock = ToneSpectrum::kBlock;

/// The range of samples in a silent block: one step of 8-bit samples up and down, and a little that a
/// resampler adds. That is noise of up to -46 dBm0, or a voice of -50.
constexpr int kSilence = 540;

/// Shorter sounds are the line's crackling and do not end a silence; the shortest touch tone lasts 40 ms
/// (ITU-T Q.24).
constexpr int kCrackle = 2;

constexpr int kMinute = 60 * kSampleRate / static_cast<int>(kBlock);

/// Detects a minute of silence.
class SilentMinute {
 public:
  bool Next(std::span<const std::int16_t> block) {
    const auto [low, high] = std::ranges::minmax(block);
    loud_ = high - low > kSilence ? loud_ + 1 : 0;
    silent_ = loud_ > kCrackle ? 0 : silent_ + 1;
    return silent_ >= kMinute;
  }

 private:
  int loud_ = 0;  ///< blocks
  int silent_ = 0;
};

}  // namespace

class HangUpDetector::Impl {
 public:
  explicit Impl(std::function<void(const char*)> heard) : heard_(std::move(heard)) {}

  void Listen(std::span<const std::int16_t> samples) {
    while (!samples.empty() && heard_) {
      const auto part = samples.first(std::min(samples.size(), kBlock - filled_));
      std::ranges::copy(part, block_.begin() + static_cast<std::ptrdiff_t>(filled_));
      samples = samples.subspan(part.size());
      filled_ = (filled_ + part.size()) % kBlock;
      if (filled_ == 0) HearBlock();
    }
  }

 private:
  void HearBlock() {
    const auto tone = cadence_.Next(spectrum_.Next(block_));
    if (silence_.Next(block_)) Tell("a minute of silence");
    if (tone == ToneCadence::Heard::Busy) Tell("the busy tone");
    if (tone == ToneCadence::Heard::Dial) Tell("the dial tone");
  }

  void Tell(const char* what) {
    if (auto heard = std::exchange(heard_, nullptr)) heard(what);
  }

  std::function<void(const char*)> heard_;  ///< empty after it was called
  std::array<std::int16_t, kBlock> block_{};
  std::size_t filled_ = 0;
  ToneSpectrum spectrum_;
  ToneCadence cadence_;
  SilentMinute silence_;
};

HangUpDetector::HangUpDetector(std::function<void(const char*)> heard)
    : impl_(std::make_unique<Impl>(std::move(heard))) {}
HangUpDetector::~HangUpDetector() = default;

void HangUpDetector::Listen(std::span<const std::int16_t> samples) {
  impl_->Listen(samples);
}

}  // namespace orven
