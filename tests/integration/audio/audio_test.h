// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <gtest/gtest.h>

#include <atomic>
#include <map>
#include <optional>
#include <random>

#include "adapters/audio/file_wave_control.h"
#include "support/desk/test_device.h"
#include "support/scratch_folder.h"
#include "support/test_loop.h"

namespace orven::testing {

using namespace std::chrono_literals;
using test::ContentOf;
using test::PutFile;
using test::PutWave;
using test::TestDevice;
using Samples = TestDevice::Samples;

inline constexpr std::int32_t kLine = kFirstLineWaveDevice, kCard = 0;
inline constexpr WaveFormat kPcm{kWaveFormatPcm, 1, 16, 8000}, kMuLaw{kWaveFormatMuLaw, 1, 8, 8000};
inline const Samples kSilence(kBlockSamples, 0);

/// Returns random samples, the same in each call and without a silent block.
inline Samples Noise(std::size_t count) {
  std::mt19937 random(1);
  Samples samples(count);
  for (auto& sample : samples) sample = static_cast<std::int16_t>(random());
  return samples;
}

/// Returns the file as telephone audio, converted by sox; empty if sox does not accept it as audio.
inline Samples Read(const std::string& path) {
  const std::string command = "sox -D '" + path + "' -t raw -e signed -b 16 -r 8000 -c 1 - 2>/dev/null";
  const std::unique_ptr<FILE, int (*)(FILE*)> pipe(popen(command.c_str(), "r"), pclose);
  Samples samples;
  for (std::int16_t sample = 0; fread(&sample, sizeof sample, 1, pipe.get()) == 1;) samples.push_back(sample);
  return samples;
}

/// A disk that fails or hangs for the files below one folder. This program replaces read, pwrite and
/// fdatasync by functions that ask it first; the code under test does not know about it.
struct FaultyDisk {
  std::string folder;                              ///< changed only while there is a single thread
  std::atomic<std::size_t> limit = SIZE_MAX;       ///< no file grows beyond it; a write is cut off there
  std::atomic<std::size_t> hangs_from = SIZE_MAX;  ///< reads from this offset, and syncs, wait for Mend
  std::atomic<int> sync_error = 0, held = 0;       ///< errno of a failing sync; operations that wait now

  /// Ends all faults and returns when no operation waits any more.
  void Mend();
};
inline FaultyDisk disk;

/// A wave control with a line, a sound card and scratch folders; the record folder is on the faulty disk.
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

  /// Handles all pending events and returns the number of PlayFinished events so far.
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
