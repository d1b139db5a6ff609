// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <array>
#include <sndfile.hh>
#include <thread>
#include <vector>

#include "platform/audio_device.h"
#include "platform/wave.h"

namespace orven::test {

/// Writes a WAV file of 16-bit samples, 8000 a second.
inline void PutWave(const std::string& path, const std::vector<std::int16_t>& samples) {
  SndfileHandle(path, SFM_WRITE, SF_FORMAT_WAV | SF_FORMAT_PCM_16, 1, kSampleRate)
      .write(samples.data(), static_cast<sf_count_t>(samples.size()));
}

/// A sound card that plays nothing by itself, with a microphone. Files that consist of one sample throughout
/// are recognised by it.
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

  /// The microphone hears one block of this sample; ignored when nothing is recorded.
  void Speak(std::int16_t sample) {
    if (sink_ != nullptr) sink_->Write(std::vector<std::int16_t>(kBlockSamples, sample));
  }

  /// Plays on until something is heard, and returns its sample; 0 when nothing plays or it has ended.
  std::int16_t Hear() {
    std::array<std::int16_t, kBlockSamples> block{};
    // The file is decoded on another thread; until its first samples are there, silence is read.
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
