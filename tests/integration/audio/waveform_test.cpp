// SPDX-License-Identifier: GPL-3.0-or-later
// The picture of an audio file.
#include "adapters/audio/waveform_reader.h"

#include <limits>

#include "integration/audio/audio_test.h"

namespace orven::testing {
namespace {

class WaveformOf : public AudioTest {
 protected:
  void Request(const std::string& name) {
    told.clear();
    reader.Request(messages / name, [this, name](const Waveform& drawn) { told.emplace_back(name, drawn); });
  }

  /// The answer to the request, waited for.
  Waveform Told() {
    EXPECT_TRUE(Eventually([&] {
      loop.Run();
      return !told.empty();
    }));
    return told.at(0).second;
  }

  Waveform Draw(const std::string& name) {
    Request(name);
    return Told();
  }

  std::vector<std::pair<std::string, Waveform>> told;
  FileWaveformReader reader{loop};
};

TEST_F(WaveformOf, ASoundHasTheLoudestSampleOfEachStretch) {
  std::vector<float> steps(44100 * 4, 0.0F), expected(1000, 0.0F);  // silent, a quarter, silent, half
  std::fill(steps.begin() + 44100, steps.begin() + 44100 * 2, 0.25F);
  std::fill(steps.begin() + 44100 * 3, steps.end(), -0.5F);
  WriteWav(messages / "steps.wav", SF_FORMAT_FLOAT, steps, 22050, 2);
  std::fill(expected.begin() + 250, expected.begin() + 500, 0.25F);
  std::fill(expected.begin() + 750, expected.end(), 0.5F);
  EXPECT_EQ(expected, Draw("steps.wav").peaks);
  EXPECT_EQ(4000ms, told.at(0).second.length);
}

TEST_F(WaveformOf, AnOddFileShowsWhatItHas) {
  const float nan = std::numeric_limits<float>::quiet_NaN();
  WriteWav(messages / "odd.wav", SF_FORMAT_FLOAT, std::vector{0.5F, nan, -7.0F});
  EXPECT_EQ((std::vector<float>{0.5F, 0.0F, 1.0F}), Draw("odd.wav").peaks);
  PutFile(messages / "text.wav", "not audio");
  WriteWav(messages / "empty.wav", SF_FORMAT_PCM_16, Samples());
  for (const char* name : {"text.wav", "empty.wav", "missing.wav", ""})
    EXPECT_TRUE(Draw(name).peaks.empty()) << name;
}

TEST_F(WaveformOf, OnlyTheNewestRequestIsAnswered) {
  WriteWav(messages / "a.wav", SF_FORMAT_PCM_16, Noise(80000));
  WriteWav(messages / "b.wav", SF_FORMAT_PCM_16, Samples(800, 16384));
  disk.hold_reads_from = 80000;  // bytes: in the middle of the first
  Request("a.wav");
  ASSERT_TRUE(Eventually([&] { return disk.held > 0; }));
  Request("a.wav");
  Request("b.wav");
  disk.Mend();
  EXPECT_EQ(std::vector<float>(800, 0.5F), Told().peaks);
  EXPECT_EQ("b.wav", told[0].first);

  Request("a.wav");
  reader.Cancel();
  EXPECT_EQ(800U, Draw("b.wav").peaks.size());
  EXPECT_EQ(1U, told.size());
}

}  // namespace
}  // namespace orven::testing
