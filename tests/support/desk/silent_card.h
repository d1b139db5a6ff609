// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <chrono>
#include <cstdint>
#include <string>
#include <vector>

#include "platform/audio_device.h"
#include "platform/wave.h"

namespace orven::test {

/// Content of a WAV file of 16-bit samples, 8000 a second.
std::string WaveFile(const std::vector<std::int16_t>& samples);

/// A WAV file with the same sample throughout: by it a sound is known again where it is played.
std::string ToneOf(std::int16_t sample, int milliseconds);

/// A sound card that plays nothing by itself, with a microphone that hears what a test says. It knows what it
/// was asked to play by the sample that every sound here consists of.
class SilentCard : public AudioDevice, public AudioDevices {
 public:
  std::int32_t StartPlay(AudioSource& source) override;
  void StopPlay() override { source_ = nullptr; }
  std::int32_t StartRecord(AudioSink& sink) override {
    if (microphone) sink_ = &sink;
    return microphone ? kWaveOk : kWaveNoDevice;
  }
  void StopRecord() override { sink_ = nullptr; }
  AudioDevice* Find(std::int32_t number) override { return number == 0 ? this : nullptr; }

  bool microphone = true;  ///< there is one

  bool Plays() const { return source_ != nullptr; }

  /// The microphone hears a sound of this sample for `length`; nothing when nobody records.
  void Speak(std::int16_t sample, std::chrono::milliseconds length);

  /// Plays on until something is heard, and returns its sample; 0 when nothing plays or it has ended.
  std::int16_t Hear();

  /// Plays to the end of the sound.
  void PlayToEnd();

 private:
  AudioSource* source_ = nullptr;
  AudioSink* sink_ = nullptr;
};

}  // namespace orven::test
