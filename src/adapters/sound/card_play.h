// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <chrono>
#include <cstdint>
#include <mutex>
#include <span>

#include "platform/audio_device.h"

namespace orven {

/// One play of one source on a sound card, where the thread that plays and the one that starts and
/// stops meet. Its lock is held only while the source is being asked, never during a call into the
/// sound system, so that whoever stops a play waits for nothing else. Any thread.
class CardPlay {
 public:
  using Clock = std::chrono::steady_clock;
  enum class Got { Block, End, Stopped };

  explicit CardPlay(AudioSource& source) : source_(&source), last_read_(Clock::now()) {}

  /// The next block: Block; End when the source has none left (once); Stopped when the play is over.
  Got Read(std::span<std::int16_t> block);

  /// Ends the play; when it returns, the source is not being asked and will not be.
  void Stop();

  /// Ends the play and tells the source so. False when it was over already.
  bool Fail();

  /// The source has neither ended nor been taken away.
  bool Active() const;

  /// How long ago the card last took a block, or the play began.
  std::chrono::milliseconds SinceLastRead() const;

 private:
  mutable std::mutex mutex_;
  AudioSource* source_;
  Clock::time_point last_read_;
};

}  // namespace orven
