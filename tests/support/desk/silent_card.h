// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <array>
#include <sndfile.hh>
#include <thread>
#include <vector>

#include "platform/audio_device.h"
#include "platform/wave.h"

namespace orven::test {

/// Writes a WAV file of 16-bit samples at 8000 Hz.
inline void PutWave(const std::string& path, const std::vector<std::int16_t>& samples) {
  SndfileHandle(path, SFM_WRITE, SF_FORMAT_WAV | SF_FORMAT_PCM_16, 1, kSampleRate)
      .write(samples.data(), static_cast<sf_count_t>(samples.size()));
}

/// A sound card with a microphone. It plays only when Hear() is called. Tests use files that repeat one
/// sample, so that the sample identifies the file.
class SilentCard : public AudioDevice, public AudioDevices {
 public:
  std::int32_t StartPlay(AudioSource& source) override {
    source_ = &source;
    return kWaveOk;
  }
  void StopPlay() override { source_ = nullptr; }
  std::int32_t StartRecord(AudioSink& sink) override {
    sink_ = &sink;
    return kWaveOk;
  }
  void StopRecord() override { sink_ = nullptr; }
  AudioDevice* Find(std::int32_t number) override { return number == 0 ? this : nullptr; }

  bool Plays() const { return source_ != nullptr; }

  /// Sends one block of this sample to the recording, if there is one.
  void Speak(std::int16_t sample) {
    if (sink_ != nullptr) sink_->Write(std::vector<std::int16_t>(kBlockSamples, sample));
  }

  /// Plays until a sample is not silence and returns it. Returns 0 if nothing plays or the file ends.
  std::int16_t Hear() {
    std::array<std::int16_t, kBlockSamples> block{};
    // Another thread decodes the file. Until it delivers samples, Read returns silence.
    while (source_ != nullptr && source_->Read(block)) {
      if (block.back() != 0) return block.back();
      std::this_thread::yield();
    }
    source_ = nullptr;
    return 0;
  }

 private:
  AudioSource* source_ = nullptr;
  AudioSink* sink_ = nullptr;
};

}  // namespace orven::test
