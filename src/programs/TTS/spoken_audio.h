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

/// Speech on its way to the sound card, one text after the other: made into the telephone's rate, a few
/// seconds of it kept in between. The thread that makes the speech waits here for room. Any thread.
class SpokenAudio : public AudioSource {
 public:
  /// Names the texts that were announced since the last cut.
  using Ticket = std::uint64_t;

  /// `sample_rate` is that of the samples written.
  explicit SpokenAudio(int sample_rate);

  struct Announced {
    Ticket ticket;
    bool start;  ///< nothing plays this sound now: a device has to be started on it
  };

  /// One more text comes.
  Announced Announce();

  /// Takes the next samples of the text that comes next, and waits for room. False when it was cut off.
  bool Write(Ticket ticket, std::span<const std::int16_t> samples);

  /// The text is complete, or cannot be spoken.
  void Finish(Ticket ticket);

  /// Cuts off all texts that have been announced; the device has been stopped before.
  void CutOff();

  bool Read(std::span<std::int16_t> block) override;

  /// The device is gone: what was announced is never heard. Each new text tries it again.
  void Gone() override { CutOff(); }

 private:
  bool Convert(Ticket ticket, std::span<const std::int16_t> samples, bool last);

  // The thread that makes the speech.
  Resampler resampler_;
  Ticket converted_ = 0;  ///< whose samples the resampler holds
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
