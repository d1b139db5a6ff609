// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <atomic>
#include <chrono>
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

}  // namespace orven
