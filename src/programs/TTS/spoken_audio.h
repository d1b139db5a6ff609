// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <condition_variable>
#include <cstdint>
#include <deque>
#include <mutex>
#include <span>
#include <vector>

#include "adapters/audio/resampler.h"
#include "platform/audio_device.h"

namespace orven {

/// Speech on its way to the sound card, one text after the other: converts it to the telephone's rate and
/// buffers a few seconds. The speech thread waits here for room. Thread-safe.
class SpokenAudio : public AudioSource {
 public:
  /// Identifies the texts that were announced since the last cut.
  using Ticket = std::uint64_t;

  /// `sample_rate` is that of the samples written.
  explicit SpokenAudio(int sample_rate);

  struct Announced {
    Ticket ticket;
    bool start;  ///< no device plays this now: one must be started
  };

  /// Announces one more text.
  Announced Announce();

  /// Adds samples of the current text; waits for room. False when the text was cut off.
  bool Write(Ticket ticket, std::span<const std::int16_t> samples);

  /// The text is complete, or cannot be spoken.
  void Finish(Ticket ticket);

  /// Cuts off all announced texts; stop the device before.
  void CutOff();

  bool Read(std::span<std::int16_t> block) override;

  /// The device has failed: announced texts are dropped. Each new text tries the device again.
  void Gone() override { CutOff(); }

 private:
  bool Convert(Ticket ticket, std::span<const std::int16_t> samples, bool last);

  // The speech thread only.
  Resampler resampler_;
  Ticket converted_ = 0;  ///< the text in the resampler
  std::vector<float> input_;
  std::vector<std::int16_t> converted_samples_;

  std::mutex mutex_;
  std::condition_variable room_;
  std::deque<std::int16_t> samples_;
  Ticket ticket_ = 1;
  std::size_t coming_ = 0;  ///< texts announced and not finished
  bool playing_ = false;
  std::size_t silent_samples_ = 0;  ///< played since the last text's end
};

}  // namespace orven
