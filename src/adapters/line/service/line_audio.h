// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <functional>
#include <mutex>
#include <span>
#include <utility>

#include "platform/audio_device.h"

namespace orven {

/// The line's wave device: what the program plays and records, and where the call's sound thread
/// fetches and leaves it. The lock is held while a source or sink runs, which is what makes the
/// guarantee of StopPlay and StopRecord.
class LineAudio : public AudioDevice {
 public:
  std::int32_t StartPlay(AudioSource& source) override;
  void StopPlay() override;
  void SourceReady() override {
    if (source_ready_) source_ready_();
  }
  std::int32_t StartRecord(AudioSink& sink) override;
  void StopRecord() override;

  /// Who is told that what plays has its first sound, on the thread that found it. Before the first play.
  void OnSourceReady(std::function<void()> handler) { source_ready_ = std::move(handler); }

  /// Fills `block` with what is to be sent now; silence, and false, when nothing plays. Call's thread.
  bool Fetch(std::span<std::int16_t> block);

  /// Hands over a received block. Call's thread.
  void Deliver(std::span<const std::int16_t> block);

  /// Whether something plays; whether somebody records. Any thread.
  bool Plays() const;
  bool Records() const;

  /// Whether playing was stopped before its end since this was asked last: what a device holds of it
  /// must not be heard any more. Call's thread.
  bool TakeCut();

 private:
  std::function<void()> source_ready_;
  mutable std::mutex play_mutex_;
  AudioSource* source_ = nullptr;  ///< guarded by play_mutex_
  bool cut_ = false;               ///< guarded by play_mutex_
  mutable std::mutex record_mutex_;
  AudioSink* sink_ = nullptr;  ///< guarded by record_mutex_
};

}  // namespace orven
