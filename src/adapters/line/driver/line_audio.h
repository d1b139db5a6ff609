// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <mutex>
#include <span>
#include <utility>

#include "platform/audio_device.h"

namespace orven {

/// A line's wave device: passes audio between the program, which plays and records, and the call's audio
/// thread. A lock is held while a source or sink is used, so that neither is used after StopPlay and
/// StopRecord return.
class LineAudio : public AudioDevice {
 public:
  std::int32_t StartPlay(AudioSource& source) override;
  void StopPlay() override;
  void SourceReady() override { source_ready_(); }
  std::int32_t StartRecord(AudioSink& sink) override;
  void StopRecord() override;

  /// `handler` is called when a source has its first samples, on the thread that finds out. To be set before
  /// the first play.
  void OnSourceReady(std::function<void()> handler) { source_ready_ = std::move(handler); }

  /// `handler` is called when playing or recording has begun, on the thread that begins it. To be set before.
  void OnStart(std::function<void()> handler) { started_ = std::move(handler); }

  /// Fills `block` with what to send now; silence and false when nothing plays. The call's thread.
  bool Fetch(std::span<std::int16_t> block);

  /// AudioSink::Hear of what records. The call's thread.
  void Hear(std::span<const std::int16_t> block, std::chrono::steady_clock::time_point at);

  /// Calls `keep` with what records, which stays until it returns; not when nothing does. The call's thread.
  void Keep(const std::function<void(AudioSink&)>& keep);

  /// `rest` writes what is still held back of a recording that is stopped. On the thread that stops it, never
  /// while Keep runs. An empty one: nothing is held back. The call's thread.
  void OnStopRecord(std::function<void(AudioSink&)> rest);

  /// Takes a block that is heard and kept at once. The call's thread.
  void Deliver(std::span<const std::int16_t> block);

  /// Whether something is played or recorded. Any thread.
  bool Plays() const;
  bool Records() const;

  /// AudioSink::Live of what records. Any thread.
  bool IsListenedTo() const;

  /// Whether playing was stopped before its end since the last query: a device must then drop what it has
  /// buffered. The call's thread.
  bool TakeCut();

 private:
  std::function<void()> source_ready_ = [] {};
  std::function<void()> started_ = [] {};
  mutable std::mutex play_mutex_;
  AudioSource* source_ = nullptr;  ///< guarded by play_mutex_
  bool cut_ = false;               ///< guarded by play_mutex_
  mutable std::mutex record_mutex_;
  AudioSink* sink_ = nullptr;             ///< guarded by record_mutex_
  std::function<void(AudioSink&)> rest_;  ///< guarded by record_mutex_
};

}  // namespace orven
