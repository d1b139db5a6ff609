// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <atomic>
#include <optional>
#include <sndfile.hh>
#include <span>
#include <thread>
#include <vector>

#include "platform/audio_device.h"
#include "platform/wave.h"

namespace orven::test {

/// Writes `samples`, interleaved, to a WAV file; `encoding` is libsndfile's constant.
template <class Number>
void PutWave(const std::string& path, const std::vector<Number>& samples, int encoding = SF_FORMAT_PCM_16,
             int rate = kSampleRate, int channels = 1) {
  SndfileHandle(path, SFM_WRITE, SF_FORMAT_WAV | encoding, channels, rate)
      .write(samples.data(), static_cast<sf_count_t>(samples.size()));
}

/// An audio device that moves blocks when the test asks for them, as fast as possible.
class TestDevice : public AudioDevice {
 public:
  using Samples = std::vector<std::int16_t>;

  std::int32_t refuse = kWaveOk;  ///< result of starting
  std::atomic<int> ready = 0;     ///< how often a source became ready
  AudioSource* source = nullptr;
  AudioSink* sink = nullptr;

  std::int32_t StartPlay(AudioSource& from) override {
    if (refuse == kWaveOk) source = &from;
    return refuse;
  }
  void StopPlay() override { source = nullptr; }
  void SourceReady() override { ++ready; }
  std::int32_t StartRecord(AudioSink& to) override {
    if (refuse == kWaveOk) sink = &to;
    return refuse;
  }
  void StopRecord() override { sink = nullptr; }

  /// Returns one block from the source; nothing if it has ended or none is playing.
  std::optional<Samples> Pull() {
    Samples block(kBlockSamples, 1);
    if (source != nullptr && source->Read(block)) return block;
    source = nullptr;
    return std::nullopt;
  }

  /// Plays to the end, or for `blocks` blocks, and returns the audio without silent blocks, because the test
  /// may pull faster than the decoder delivers.
  Samples Play(int blocks = 1'000'000) {
    Samples played;
    for (auto block = Pull(); block; block = --blocks > 0 ? Pull() : std::nullopt)
      if (*block != Samples(kBlockSamples)) played.insert(played.end(), block->begin(), block->end());
    return played;
  }

  /// Delivers `samples`, in whole blocks, to the recording.
  void Capture(const Samples& samples) {
    for (std::size_t at = 0; sink != nullptr && at < samples.size(); at += kBlockSamples) {
      const auto block = std::span(samples).subspan(at, kBlockSamples);
      sink->Hear(block, std::chrono::steady_clock::now());
      sink->Write(block);
    }
  }
};

/// A sound card with a microphone. Tests use files that repeat one sample, so that the sample identifies the
/// file.
class SilentCard : public TestDevice, public AudioDevices {
 public:
  AudioDevice* Find(std::int32_t number) override { return number == 0 ? this : nullptr; }
  bool Plays() const { return source != nullptr; }

  /// Plays until a sample is not silence and returns it. Returns 0 if nothing plays or the file ends.
  std::int16_t Hear() {
    // Another thread decodes the file. Until it delivers samples, the blocks are silent.
    for (auto block = Pull(); block; block = Pull()) {
      if (block->back() != 0) return block->back();
      std::this_thread::yield();
    }
    return 0;
  }
};

}  // namespace orven::test
