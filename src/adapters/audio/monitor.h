// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <array>
#include <atomic>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <span>

#include "platform/audio_device.h"

namespace orven {

/// Measures how loud a device's sound is.
class PeakMeter : public AudioSink {
 public:
  void Write(std::span<const std::int16_t> block) override;

  /// Peak of the last block in thousandths of full scale; 0 when none has come for a second, as a
  /// caller who sends nothing is a silent one. Any thread.
  std::int32_t Level() const;

 private:
  std::atomic<std::int32_t> level_{0};
  std::atomic<std::chrono::steady_clock::rep> level_at_{0};
};

/// Carries sound from a recording device to a playing one while it is captured. The two run on clocks
/// of their own: when the player falls behind, the oldest sound is dropped so that the delay stays
/// below 100 ms; when it runs dry, it plays silence and gathers a little stock again. Never ends.
class LiveMonitor : public AudioSource {
 public:
  /// Adds a captured block. One thread (the recording device's); never waits.
  void Push(std::span<const std::int16_t> block);

  /// One thread (the playing device's); always true.
  bool Read(std::span<std::int16_t> block) override;

  /// Forgets what is in stock. While no device reads.
  void Restart();

 private:
  static constexpr std::size_t kCapacity = 1024;  ///< 128 ms: what may be in stock, and one block to spare

  /// Atomic each, because a player that was held up may read a sample while it is overwritten; it then
  /// plays one wrong sample.
  std::array<std::atomic<std::int16_t>, kCapacity> samples_{};
  std::atomic<std::uint64_t> written_{0};  ///< samples ever pushed
  std::uint64_t read_ = 0;                 ///< of these, samples read or dropped
  bool gathering_ = true;
};

}  // namespace orven
