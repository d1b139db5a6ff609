// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <deque>
#include <memory>
#include <vector>

#include "platform/audio_device.h"
#include "platform/event_loop.h"

namespace orven {

/// The sound of a simulated call: what is played is kept for the caller to hear, what the caller says
/// is recorded, silence when nothing is said. Moves a block every 20 ms of its loop's time while a
/// call is up and something plays or records.
class SimAudio : public AudioDevice {
 public:
  explicit SimAudio(EventLoop& loop);

  /// A call was answered, or is gone.
  void SetCall(bool up) { up_ = up; }

  /// The caller says this, after what was said before.
  void Say(const std::vector<std::int16_t>& samples);

  /// What the caller has heard so far, with its gaps left out.
  const std::vector<std::int16_t>& Heard() const { return heard_; }

  std::int32_t StartPlay(AudioSource& source) override;
  void StopPlay() override;
  std::int32_t StartRecord(AudioSink& sink) override;
  void StopRecord() override;

 private:
  void Move();

  bool up_ = false;
  AudioSource* source_ = nullptr;
  AudioSink* sink_ = nullptr;
  std::deque<std::int16_t> said_;
  std::vector<std::int16_t> heard_;
  std::unique_ptr<Timer> pace_;
};

}  // namespace orven
