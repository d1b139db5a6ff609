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

/// Measures the level of a device's audio and remembers it for a moment: whoever wakes up less often than
/// blocks come still gets the level of each.
class PeakMeter : public AudioSink {
 public:
  void Hear(std::span<const std::int16_t> block, std::chrono::steady_clock::time_point at) override;
  void Write(std::span<const std::int16_t> /*samples*/) override {}

  /// Peak of the block that was heard `ago` before now (0 to 200 ms), in thousandths of full scale; 0 when
  /// none had come for a second then: a caller who sends nothing is silent. Any thread.
  std::int32_t Level(std::chrono::milliseconds ago) const;

 private:
  /// A level and the moment from which it counts, in one word: neither thread ever waits for the other.
  using Heard = std::uint64_t;

  /// 320 ms: 200 ms back, 100 ms ahead, and a block that is being replaced.
  static constexpr std::size_t kRemembered = 16;

  std::array<std::atomic<Heard>, kRemembered> heard_{};
  std::atomic<std::size_t> count_{0};  ///< blocks ever heard
};

/// Passes audio from a recording device to a playing one while it is captured. The two have different clocks:
/// when the player runs dry, it plays silence until two blocks are buffered again; more than that is dropped
/// when it was not needed for a second, and at once beyond 80 ms. Never ends.
class LiveMonitor : public AudioSource {
 public:
  /// Adds a captured block. One thread (the recording device's); never waits.
  void Push(std::span<const std::int16_t> block);

  /// One thread (the playing device's); always true.
  bool Read(std::span<std::int16_t> block) override;
  bool Live() const override { return true; }

  /// Begins and ends to take what is pushed, with nothing buffered. Only while no device reads.
  void SetOpen(bool open);
  bool Open() const { return open_; }  ///< any thread

 private:
  void Trim(std::uint64_t written);

  static constexpr std::size_t kCapacity =
      1024;  ///< 128 ms: the most that is buffered and two blocks to spare

  /// Atomic, because a player that was delayed may read a sample while it is overwritten; it then plays one
  /// wrong sample.
  std::array<std::atomic<std::int16_t>, kCapacity> samples_{};
  std::atomic<std::uint64_t> written_{0};  ///< samples ever pushed
  std::atomic<bool> open_{false};
  std::uint64_t read_ = 0;         ///< of `written_`, samples read or dropped
  std::uint64_t least_stock_ = 0;  ///< at any of the latest reads
  int observed_reads_ = 0;
  bool gathering_ = true;
};

}  // namespace orven
