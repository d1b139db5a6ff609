// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <gtest/gtest.h>

#include <atomic>
#include <map>
#include <mutex>
#include <optional>
#include <sndfile.hh>
#include <thread>

#include "adapters/audio/file_wave_control.h"
#include "support/scratch_folder.h"
#include "support/test_loop.h"

namespace orven::testing {

using namespace std::chrono_literals;
using test::ContentOf;
using test::PutFile;
using Samples = std::vector<std::int16_t>;

inline constexpr std::int32_t kLine = kFirstLineWaveDevice;
inline constexpr std::int32_t kCard = 0;
inline constexpr std::size_t kSecond = kSampleRate;  ///< in samples
inline constexpr WaveFormat kPcm{kWaveFormatPcm, 1, 16, 8000};
inline constexpr WaveFormat kMuLaw{kWaveFormatMuLaw, 1, 8, 8000};
inline const Samples kSilence(kBlockSamples, 0);

/// Random samples, never a whole block of silence; the same for the same `seed`.
Samples Noise(std::size_t count, unsigned seed = 1);

/// `encoding` as libsndfile names it, `samples` interleaved.
template <class Number>
void WriteWav(const std::string& path, int encoding, const std::vector<Number>& samples,
              int rate = kSampleRate, int channels = 1) {
  SndfileHandle(path, SFM_WRITE, SF_FORMAT_WAV | encoding, channels, rate)
      .write(samples.data(), static_cast<sf_count_t>(samples.size()));
}

/// What `command` prints.
std::string Printed(const std::string& command);

/// What sox makes of the file as telephone audio; empty when it does not take it for an audio file.
Samples Read(const std::string& path);

/// A disk that fails or hangs for the files below one folder: this program's own read, pwrite and fdatasync
/// ask it first. The code under test does not know of it.
struct FaultyDisk {
  std::string folder;                                   ///< set while one thread runs
  std::atomic<std::size_t> limit = SIZE_MAX;            ///< no file grows beyond it; a write is cut there
  std::atomic<std::size_t> hold_reads_from = SIZE_MAX;  ///< reads from this offset on wait for Mend
  std::atomic<int> sync_error = 0;                      ///< errno with which a sync fails
  std::atomic<bool> hold_syncs = false;                 ///< syncs wait for Mend
  std::atomic<int> held = 0;                            ///< operations that wait now

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

  std::int32_t StartPlay(AudioSource& from) override { return refuse != 0 ? refuse : Set(source, &from); }
  void StopPlay() override { Set<AudioSource>(source, nullptr); }
  void SourceReady() override { ++ready; }
  std::int32_t StartRecord(AudioSink& to) override { return refuse != 0 ? refuse : Set(sink, &to); }
  void StopRecord() override { Set<AudioSink>(sink, nullptr); }

  /// One block from the source; nothing when it has ended or none plays.
  std::optional<Samples> Pull();

  /// Plays to the end and returns what was played, without blocks of silence: pulls may be ahead of the
  /// decoder.
  Samples PlayToEnd();

  /// Captures whole blocks.
  void Capture(const Samples& samples);

 private:
  template <class Client>
  std::int32_t Set(Client*& place, Client* client) {
    const std::lock_guard lock(mutex_);
    place = client;
    return kWaveOk;
  }
  std::mutex mutex_;
};

/// A folder that is deleted with everything in it.
class TempFolder : public test::ScratchFolder {
 public:
  using ScratchFolder::ScratchFolder;
  std::string Path() const { return std::filesystem::path(*this / "any").parent_path(); }
  std::vector<std::string> Names(const std::string& suffix = "") const;
};

/// A wave control with a line, a sound card, and folders of its own; the record folder is on a faulty disk.
class AudioTest : public ::testing::Test, public WaveEvents, public AudioDevices {
 protected:
  AudioTest() {
    disk.folder = messages / "";
    control->SetEvents(this);
    control->SetRecordFolder(messages.Path());
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

  TempFolder messages, rescue;
  const std::string message = messages / "m.wav";
  TestLoop loop;
  TestDevice line, card;
  std::atomic<int> finished = 0;
  std::optional<FileWaveControl> control{std::in_place, loop, *this, rescue.Path()};
};

}  // namespace orven::testing
