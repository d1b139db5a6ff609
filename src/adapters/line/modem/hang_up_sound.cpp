// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/line/modem/hang_up_sound.h"

#include <algorithm>
#include <array>
#include <utility>

#include "adapters/line/modem/tone_cadence.h"
#include "adapters/line/modem/tone_spectrum.h"
#include "platform/audio_device.h"

namespace orven {
namespace {

constexpr std::size_t kBlock = ToneSpectrum::kBlock;

/// From the lowest to the highest sample of a block that is silence: one step of 8-bit samples up and down,
/// and a little that a resampler adds. That is noise of up to -46 dBm0, or a voice of -50.
constexpr int kSilence = 540;

/// Sounds in silence that are no longer are the line's own crackling; the shortest touch tone lasts 40 ms
/// (ITU-T Q.24).
constexpr int kCrackle = 2;

constexpr int kMinute = 60 * kSampleRate / static_cast<int>(kBlock);

/// A minute without a sound.
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

class HangUpSound::Impl {
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

  std::function<void(const char*)> heard_;  ///< none when it has been called
  std::array<std::int16_t, kBlock> block_{};
  std::size_t filled_ = 0;
  ToneSpectrum spectrum_;
  ToneCadence cadence_;
  SilentMinute silence_;
};

HangUpSound::HangUpSound(std::function<void(const char*)> heard)
    : impl_(std::make_unique<Impl>(std::move(heard))) {}
HangUpSound::~HangUpSound() = default;

void HangUpSound::Listen(std::span<const std::int16_t> samples) {
  impl_->Listen(samples);
}

}  // namespace orven
