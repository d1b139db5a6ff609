// SPDX-License-Identifier: GPL-3.0-or-later
// The picture of a sound file.
#include "adapters/audio/waveform_reader.h"

#include <gtest/gtest.h>
#include <sndfile.h>

#include <limits>

#include "integration/audio/disk_faults.h"
#include "integration/audio/sounds.h"
#include "integration/audio/test_loop.h"

namespace orven::testing {
namespace {

using namespace std::chrono_literals;

class WaveformOf : public ::testing::Test {
 protected:
  ~WaveformOf() override { disk.Release(); }

  /// Takes down what it is given, under `name`.
  WaveformReader::Done Note(const std::string& name) {
    return [this, name](const Waveform& waveform) { told.emplace_back(name, waveform); };
  }

  Waveform Draw(const std::string& path) {
    told.clear();
    reader.Request(path, Note(path));
    EXPECT_TRUE(Told());
    return told.empty() ? Waveform{} : told.back().second;
  }

  bool Told() {
    return Eventually([&] {
      loop.Run();
      return !told.empty();
    });
  }

  TempFolder folder;
  DiskFaults disk{folder.Path()};
  TestLoop loop;
  std::vector<std::pair<std::string, Waveform>> told;
  FileWaveformReader reader{loop};
};

TEST_F(WaveformOf, ASoundHasTheLoudestSampleOfEachStretch) {
  const auto path = folder / "steps.wav";
  std::vector<float> steps(44100 * 4, 0.0F);  // silent, a quarter, silent, half
  std::fill(steps.begin() + 44100, steps.begin() + 44100 * 2, 0.25F);
  std::fill(steps.begin() + 44100 * 3, steps.end(), -0.5F);
  WriteSound(path, SF_FORMAT_WAV | SF_FORMAT_FLOAT, 44100, 2, steps);
  const auto waveform = Draw(path);
  EXPECT_EQ(4000ms, waveform.length);
  std::vector<float> expected(1000, 0.0F);
  std::fill(expected.begin() + 250, expected.begin() + 500, 0.25F);
  std::fill(expected.begin() + 750, expected.end(), 0.5F);
  EXPECT_EQ(expected, waveform.peaks);
}

TEST_F(WaveformOf, AnOddFileShowsWhatItHas) {
  const float nan = std::numeric_limits<float>::quiet_NaN();
  WriteSound(folder / "odd.wav", SF_FORMAT_WAV | SF_FORMAT_FLOAT, 8000, 1, {0.5F, nan, -7.0F});
  EXPECT_EQ((std::vector<float>{0.5F, 0.0F, 1.0F}), Draw(folder / "odd.wav").peaks);
  WriteText(folder / "text.wav", "no sound");
  WriteSound(folder / "empty.wav", SF_FORMAT_WAV | SF_FORMAT_PCM_16, Samples{});
  for (const char* name : {"text.wav", "empty.wav", "missing.wav", ""})
    EXPECT_TRUE(Draw(folder / name).peaks.empty()) << name;
}

TEST_F(WaveformOf, TheNewestRequestIsAnsweredAndNoOther) {
  WriteSound(folder / "a.wav", SF_FORMAT_WAV | SF_FORMAT_PCM_16, Noise(80000));
  WriteSound(folder / "b.wav", SF_FORMAT_WAV | SF_FORMAT_PCM_16, Samples(800, 16384));
  disk.HoldReads(80000);  // bytes: in the middle of the first
  reader.Request(folder / "a.wav", Note("a"));
  ASSERT_TRUE(Eventually([&] { return disk.Holds(); }));
  reader.Request(folder / "a.wav", Note("again"));
  reader.Request(folder / "b.wav", Note("b"));
  disk.Release();
  ASSERT_TRUE(Told());
  EXPECT_EQ("b", told[0].first);
  EXPECT_EQ(std::vector<float>(800, 0.5F), told[0].second.peaks);

  told.clear();
  reader.Request(folder / "a.wav", Note("cancelled"));
  reader.Cancel();
  reader.Request(folder / "b.wav", Note("last"));
  ASSERT_TRUE(Told());
  loop.Run();
  EXPECT_EQ(1U, told.size());
  EXPECT_EQ("last", told[0].first);
}

}  // namespace
}  // namespace orven::testing
