// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <gtest/gtest.h>

#include <atomic>
#include <cstring>
#include <map>
#include <optional>
#include <random>
#include <sndfile.hh>

#include "adapters/audio/file_wave_control.h"
#include "support/scratch_folder.h"
#include "support/test_loop.h"

namespace orven::testing {

using namespace std::chrono_literals;
using test::ContentOf;
using test::PutFile;
using Samples = std::vector<std::int16_t>;

inline constexpr std::int32_t kLine = kFirstLineWaveDevice, kCard = 0;
inline constexpr WaveFormat kPcm{kWaveFormatPcm, 1, 16, 8000}, kMuLaw{kWaveFormatMuLaw, 1, 8, 8000};
inline const Samples kSilence(kBlockSamples, 0);

/// Random samples, never a whole block of silence; the same at each call.
inline Samples Noise(std::size_t count) {
  std::mt19937 random(1);
  Samples samples(count);
  for (auto& sample : samples) sample = static_cast<std::int16_t>(random());
  return samples;
}

/// `encoding` as libsndfile names it, `samples` interleaved.
template <class Number>
void WriteWav(const std::string& path, int encoding, const std::vector<Number>& samples,
              int rate = kSampleRate, int channels = 1) {
  SndfileHandle(path, SFM_WRITE, SF_FORMAT_WAV | encoding, channels, rate)
      .write(samples.data(), static_cast<sf_count_t>(samples.size()));
}

/// What sox makes of the file as telephone audio; empty when it does not take it for an audio file.
inline Samples Read(const std::string& path) {
  const std::string command = "sox -D '" + path + "' -t raw -e signed -b 16 -r 8000 -c 1 - 2>/dev/null";
  const std::unique_ptr<FILE, int (*)(FILE*)> pipe(popen(command.c_str(), "r"), pclose);
  Samples samples;
  for (std::int16_t sample = 0; fread(&sample, sizeof sample, 1, pipe.get()) == 1;) samples.push_back(sample);
  return samples;
}

/// A disk that fails or hangs for the files below one folder: this program's own read, pwrite and fdatasync
/// ask it first. The code under test does not know of it.
struct FaultyDisk {
  std::string folder;                              ///< set while one thread runs
  std::atomic<std::size_t> limit = SIZE_MAX;       ///< no file grows beyond it; a write is cut there
  std::atomic<std::size_t> hangs_from = SIZE_MAX;  ///< reads from this offset on, and syncs, wait for Mend
  std::atomic<int> sync_error = 0, held = 0;       ///< errno with which a sync fails; operations that wait

  /// Ends all faults, and returns when nothing waits any more.
  void Mend();
};
inline FaultyDisk disk;

/// An audio device whose blocks move when the test says so, as fast as possible.
class TestDevice : public AudioDevice {
 public:
  std::int32_t refuse = kWaveOk;  ///< what starting returns
  std::atomic<int> ready = 0;     ///< how often a source had its first sound
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

  /// One block from the source; nothing when it has ended or none plays.
  std::optional<Samples> Pull() {
    Samples block(kBlockSamples, 1);
    if (source != nullptr && source->Read(block)) return block;
    source = nullptr;
    return std::nullopt;
  }

  /// What is played to the end, or in so many blocks, without blocks of silence: pulls may be ahead of the
  /// decoder.
  Samples Play(int blocks = 1'000'000) {
    Samples played;
    for (auto block = Pull(); block; block = --blocks > 0 ? Pull() : std::nullopt)
      if (*block != kSilence) played.insert(played.end(), block->begin(), block->end());
    return played;
  }

  /// Captures whole blocks.
  void Capture(const Samples& samples) {
    for (std::size_t at = 0; sink != nullptr && at < samples.size(); at += kBlockSamples)
      sink->Write(std::span(samples).subspan(at, kBlockSamples));
  }
};

/// A wave control with a line, a sound card, and folders of its own; the record folder is on a faulty disk.
class AudioTest : public ::testing::Test, public WaveEvents, public AudioDevices {
 protected:
  AudioTest() {
    disk.folder = messages / "";
    control->SetEvents(this);
    control->SetRecordFolder(messages / "");
    control->SetRecordToDisk(true);
  }
  ~AudioTest() override {
    disk.Mend();
    control.reset();
    disk.folder.clear();
  }

  AudioDevice* Find(std::int32_t n) override { return n == kLine ? &line : n == kCard ? &card : nullptr; }
  void PlayFinished() override { ++finished; }

  /// PlayFinished events so far.
  int Finished() {
    loop.Run();
    return finished;
  }

  test::ScratchFolder messages, rescue;
  const std::string message = messages / "m.wav";
  TestLoop loop;
  TestDevice line, card;
  int finished = 0;
  std::optional<FileWaveControl> control{std::in_place, loop, *this, rescue / "kept"};
};

}  // namespace orven::testing
