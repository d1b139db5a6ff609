// SPDX-License-Identifier: GPL-3.0-or-later
// What a caller hears of sound files of every kind.
#include <sndfile.h>
#include <sys/stat.h>

#include <algorithm>
#include <cstdlib>
#include <limits>

#include "integration/audio/audio_test.h"

namespace orven::testing {
namespace {

/// Not a whole number of blocks, so that the last one is a partial one.
constexpr double kSeconds = 1.037;

/// Hz; no divisor of any rate, so that rounding errors are noise.
constexpr double kTone = 997;
constexpr std::size_t kBlocks = 52;  // 1.037 s, rounded up to 20 ms

struct Kind {
  const char* name;
  int encoding;
  double snr;  ///< dB that the encoding itself leaves to a sine of half scale
};

constexpr Kind kKinds[] = {
    {"Pcm8", SF_FORMAT_PCM_U8, 36},  {"Pcm16", SF_FORMAT_PCM_16, 80}, {"Pcm24", SF_FORMAT_PCM_24, 80},
    {"Pcm32", SF_FORMAT_PCM_32, 80}, {"Float", SF_FORMAT_FLOAT, 80},  {"Double", SF_FORMAT_DOUBLE, 80},
    {"MuLaw", SF_FORMAT_ULAW, 35},   {"ALaw", SF_FORMAT_ALAW, 35},
};

class PlayFormats : public AudioTest {
 protected:
  /// Plays the file to its end; the sound as the line got it.
  Samples Play(const std::string& path) {
    EXPECT_EQ(kWaveOk, control->PlayFile(path, kLine)) << path;
    Samples played = line.PlayToEnd();
    loop.Run();
    return played;
  }

  void ExpectSine(const Kind& kind, int rate, int channels) {
    SCOPED_TRACE(std::string(kind.name) + " " + std::to_string(rate) + " x" + std::to_string(channels));
    const std::string path = folder / "sine.wav";
    WriteSound(path, SF_FORMAT_WAV | kind.encoding, rate, channels, Sine(rate, kTone, 0.5, kSeconds));
    const Samples played = Play(path);
    ASSERT_EQ(kBlocks * kBlock, played.size());
    const SineFit fit = FitSine(Samples(played.begin() + 80, played.begin() + 80 + 8000), kTone);
    EXPECT_NEAR(0.5, fit.amplitude, 0.005);
    EXPECT_GT(fit.snr, kind.snr);
    EXPECT_NEAR(kSeconds, control->FileLength(path), 0.001);
  }
};

TEST_F(PlayFormats, EveryEncodingKeepsLevelAndSound) {
  for (const Kind& kind : kKinds) {
    ExpectSine(kind, 8000, 1);
    ExpectSine(kind, 44100, 2);
  }
}

TEST_F(PlayFormats, EveryRateKeepsLevelAndSound) {
  for (const int rate : {11025, 12000, 16000, 22050, 24000, 32000, 48000, 88200, 96000, 192000})
    ExpectSine({"Pcm16", SF_FORMAT_PCM_16, 75}, rate, 1);
}

TEST_F(PlayFormats, WhatNeedsNoConversionIsPlayedBitByBit) {
  for (const int encoding : {SF_FORMAT_PCM_16, SF_FORMAT_ULAW, SF_FORMAT_ALAW}) {
    const std::string path = folder / "exact.wav";
    WriteSound(path, SF_FORMAT_WAV | encoding, Noise(5 * kSecond + 7));
    Samples expected = *ReadWithSndfile(path);
    expected.resize(251 * kBlock);  // the last block ends in silence
    EXPECT_EQ(expected, Play(path));
  }
}

TEST_F(PlayFormats, ChannelsAreMixedWithoutOverflow) {
  std::vector<float> frames;  // one channel at full scale, the other silent
  for (const float sample : Sine(8000, 500, 0.999, 1)) frames.insert(frames.end(), {sample, 0});
  SF_INFO info{};
  info.format = SF_FORMAT_WAV | SF_FORMAT_PCM_16;
  info.samplerate = 8000;
  info.channels = 2;
  SNDFILE* file = sf_open((folder / "left.wav").c_str(), SFM_WRITE, &info);
  sf_write_float(file, frames.data(), static_cast<sf_count_t>(frames.size()));
  sf_close(file);
  EXPECT_NEAR(0.4995, FitSine(Play(folder / "left.wav"), 500).amplitude, 0.001);

  WriteSound(folder / "six.wav", SF_FORMAT_WAVEX | SF_FORMAT_PCM_16, 8000, 6, Sine(8000, 500, 0.999, 1));
  EXPECT_NEAR(0.999, FitSine(Play(folder / "six.wav"), 500).amplitude, 0.001);
}

TEST_F(PlayFormats, TooLoudIsClipped) {
  for (const int rate : {8000, 44100}) {
    WriteSound(folder / "loud.wav", SF_FORMAT_WAV | SF_FORMAT_FLOAT, rate, 1, Sine(rate, 100, 4, 1));
    const Samples played = Play(folder / "loud.wav");
    ASSERT_EQ(kSecond, played.size());
    EXPECT_EQ(32767, *std::max_element(played.begin(), played.end()));
    EXPECT_EQ(-32768, *std::min_element(played.begin(), played.end()));
    EXPECT_EQ(32767, played[20]);  // the tops of the half waves, where wrapping would change the sign
    EXPECT_EQ(-32768, played[60]);
  }
}

TEST_F(PlayFormats, WhatIsNoNumberIsSilence) {
  for (const int rate : {8000, 44100}) {
    std::vector<float> damaged = Sine(rate, kTone, 0.5, 1);
    damaged[damaged.size() / 2] = std::numeric_limits<float>::quiet_NaN();
    damaged[damaged.size() / 3] = std::numeric_limits<float>::infinity();
    WriteSound(folder / "damaged.wav", SF_FORMAT_WAV | SF_FORMAT_FLOAT, rate, 1, damaged);
    const Samples played = Play(folder / "damaged.wav");
    ASSERT_EQ(kSecond, played.size());
    EXPECT_GT(18000, *std::max_element(played.begin(), played.end()));
    EXPECT_LT(-18000, *std::min_element(played.begin(), played.end()));
    EXPECT_GT(FitSine(played, kTone).snr, 30);
  }
}

TEST_F(PlayFormats, WhatIsNoSoundIsRefusedAtOnce) {
  WriteText(folder / "empty.wav", "");
  WriteText(folder / "text.wav", std::string(10000, 'x'));
  WriteText(folder / "riff.wav", "RIFF\xff\xff\xff\xffWAVEfmt ");
  WriteSound(folder / "no samples.wav", SF_FORMAT_WAV | SF_FORMAT_PCM_16, Samples());
  ASSERT_EQ(0, mkfifo((folder / "pipe.wav").c_str(), 0600));
  EXPECT_EQ(kWaveFileNotFound, control->PlayFile(folder / "missing.wav", kLine));
  EXPECT_EQ(kWaveFileNotFound, control->PlayFile(folder / "text.wav/below.wav", kLine));
  EXPECT_EQ(kWaveFileNotFound, control->PlayFile("", kLine));
  EXPECT_EQ(kWaveFileUnreadable, control->PlayFile(folder.Path(), kLine));
  for (const std::string name : {"empty.wav", "text.wav", "riff.wav", "pipe.wav"})
    EXPECT_EQ(kWaveFileUnreadable, control->PlayFile(folder / name, kLine)) << name;
  EXPECT_FALSE(control->IsPlaying());
  EXPECT_FALSE(line.Plays());

  for (const std::string name : {"missing.wav", "empty.wav", "text.wav", "riff.wav", "pipe.wav"})
    EXPECT_LT(control->FileLength(folder / name), 0) << name;
  EXPECT_EQ(0, control->FileLength(folder / "no samples.WAV")) << "in whatever case";
  EXPECT_TRUE(Play(folder / "no samples.wav").empty()) << "a sound that is over at once";
  EXPECT_EQ(1, finished);
}

}  // namespace
}  // namespace orven::testing
