// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "platform/audio_device.h"

namespace orven::test {

/// Content of a WAV file of 16-bit samples, 8000 a second.
std::string WaveFile(const std::vector<std::int16_t>& samples);

/// A WAV file with the same sample throughout: by it a sound is known again where it is played.
std::string ToneOf(std::int16_t sample, int milliseconds);

/// A sound card that plays nothing by itself. It knows what it was asked to play by the sample that
/// every sound here consists of.
class SilentCard : public AudioDevice, public AudioDevices {
 public:
  std::int32_t StartPlay(AudioSource& source) override;
  void StopPlay() override { source_ = nullptr; }
  std::int32_t StartRecord(AudioSink& /*sink*/) override { return 0; }
  void StopRecord() override {}
  AudioDevice* Find(std::int32_t number) override { return number == 0 ? this : nullptr; }

  bool Plays() const { return source_ != nullptr; }

  /// Plays on until something is heard, and returns its sample; 0 when nothing plays or it has ended.
  std::int16_t Hear();

  /// Plays to the end of the sound.
  void PlayToEnd();

 private:
  AudioSource* source_ = nullptr;
};

}  // namespace orven::test
