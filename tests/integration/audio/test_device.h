// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <atomic>
#include <map>
#include <mutex>
#include <optional>
#include <vector>

#include "platform/audio_device.h"

namespace orven::testing {

using Samples = std::vector<std::int16_t>;

/// An audio device whose blocks move when the test says so, as fast as they can.
class TestDevice : public AudioDevice {
 public:
  std::int32_t refuse = 0;     ///< what starting answers instead, unless 0
  std::atomic<int> ready = 0;  ///< how often a source had its first sound

  std::int32_t StartPlay(AudioSource& source) override;
  void StopPlay() override;
  void SourceReady() override { ++ready; }
  std::int32_t StartRecord(AudioSink& sink) override;
  void StopRecord() override;

  bool Plays();
  bool Records();

  /// One block from the source; nothing when it has ended or none plays.
  std::optional<Samples> Pull();

  /// Plays to the end on a thread of its own and returns what was played, without the blocks of silence
  /// that a pull ahead of the decoder gets.
  Samples PlayToEnd();

  /// Captures `samples` on a thread of its own; the last block is filled up with silence.
  void Capture(const Samples& samples);

 private:
  std::mutex mutex_;
  AudioSource* source_ = nullptr;
  AudioSink* sink_ = nullptr;
};

class TestDevices : public AudioDevices {
 public:
  std::map<std::int32_t, TestDevice*> numbered;

  AudioDevice* Find(std::int32_t number) override {
    const auto found = numbered.find(number);
    return found == numbered.end() ? nullptr : found->second;
  }
};

}  // namespace orven::testing
