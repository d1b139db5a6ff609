// SPDX-License-Identifier: GPL-3.0-or-later
// What a caller hears of audio files of every kind, when a play ends and what ends it, and the picture of a
// file.
#include <sys/stat.h>

#include <algorithm>
#include <limits>

#include "adapters/audio/waveform_reader.h"
#include "integration/audio/audio_test.h"

namespace orven::testing {
namespace {

constexpr float kNan = std::numeric_limits<float>::quiet_NaN();

class Play : public AudioTest {
 protected:
  Play() {
    WriteWav(greeting, SF_FORMAT_PCM_16, whole);
    whole.resize(3 * kSecond);  // the last block is filled up with silence
  }

  void Start(const std::string& path) { ASSERT_EQ(kWaveOk, control->PlayFile(path, kLine)) << path; }
  Samples Played(const std::string& path) {
    Start(path);
    return line.PlayToEnd();
  }

  Samples whole = Noise(3 * kSecond - 8);
  const std::string greeting = messages / "greeting.wav", other = messages / "other.wav";
};

TEST_F(Play, EveryRateAndEncodingSoundsAsSoxPlaysItFromAnyPlace) {
  int plays = 0;
  for (const int rate : {4000, 8000, 11025, 44100, 192000}) {
    const std::string kind =
        "sox -R -n -r " + std::to_string(rate) + " -c " + std::to_string(rate % 3 + 1) + " ";
    for (const std::string encoding :
         {"-b 8 -e u-law", "-b 8 -e a-law", "-b 8 -e unsigned", "-b 24", "-e float"}) {
      ASSERT_EQ(0, std::system((kind + encoding + " " + other + " synth 2.085 sine 997 vol 0.5").c_str()));
      const Samples expected = Read(other);
      EXPECT_NEAR(2.085, control->FileLength(other), 0.001);
      for (const std::size_t start : {0, kSampleRate}) {
        Start(other);
        if (start != 0) control->Seek(1s);
        const Samples played = line.PlayToEnd();
        EXPECT_EQ(++plays, Finished());
        ASSERT_EQ((16680 - start + 159) / 160 * 160, played.size());
        int difference = 0;
        for (std::size_t i = 200; i < 8400; ++i)  // without the edges
          difference = std::max(difference, std::abs(played[i] - expected[start + i]));
        EXPECT_LE(difference, rate == 8000 ? 1 : 100) << rate << encoding;  // rounding; another filter
      }
    }
  }
}

TEST_F(Play, ChannelsAreMixedLoudSoundIsClippedAndNaNIsSilence) {
  constexpr float kInfinity = std::numeric_limits<float>::infinity();
  const std::vector frames{0.5F, 0.0F, -0.5F, 1.0F, kNan, 1.0F, 1.0F, kInfinity, 4.0F, 0.0F, 0.0F, -4.0F};
  WriteWav(other, SF_FORMAT_FLOAT, frames, 8000, 2);
  Samples mixed{8192, 8192, 0, 0, 32767, -32768};
  mixed.resize(kBlockSamples);
  EXPECT_EQ(mixed, Played(other));
}

TEST_F(Play, AFileWithoutAudioIsRefusedAtOnce) {
  PutFile(messages / "empty.wav", "");
  PutFile(messages / "text.wav", std::string(10000, 'x'));
  PutFile(messages / "riff.wav", "RIFF\xff\xff\xff\xffWAVEfmt ");
  WriteWav(messages / "slow.wav", SF_FORMAT_PCM_16, Noise(31), 31);
  WriteWav(messages / "no samples.wav", SF_FORMAT_PCM_16, Samples());
  ASSERT_EQ(0, mkfifo((messages / "pipe.wav").c_str(), 0600));
  for (const auto& [name, result] : std::map<std::string, int>{{"missing.wav", kWaveFileNotFound},
                                                               {"text.wav/below.wav", kWaveFileNotFound},
                                                               {".", kWaveFileUnreadable},
                                                               {"empty.wav", kWaveFileUnreadable},
                                                               {"text.wav", kWaveFileUnreadable},
                                                               {"slow.wav", kWaveBadFormat},
                                                               {"riff.wav", kWaveFileUnreadable},
                                                               {"pipe.wav", kWaveFileUnreadable}}) {
    EXPECT_EQ(result, control->PlayFile(messages / name, kLine)) << name;
    EXPECT_TRUE(control->PlayErrorText(result).ends_with(" (\"" + messages / name + "\")")) << name;
    EXPECT_EQ(name == "slow.wav", control->FileLength(messages / name) > 0) << name;
  }
  EXPECT_FALSE(control->IsPlaying() || line.source);
  EXPECT_EQ(0, control->FileLength(messages / "no samples.WAV")) << "in any case";
  EXPECT_EQ(Samples(), Played(messages / "no samples.wav"));
  EXPECT_EQ(1, Finished()) << "over at once";
}

TEST_F(Play, FinishedIsToldOnceWhenTheDeviceHasTakenAll) {
  Start(greeting);
  EXPECT_EQ(kWaveBusy, control->PlayFile(greeting, kCard));
  EXPECT_EQ(whole, line.PlayToEnd());
  EXPECT_EQ(1, line.ready);
  EXPECT_TRUE(control->IsPlaying());
  EXPECT_EQ(2999ms, control->Position());
  EXPECT_EQ(0, finished);
  EXPECT_EQ(1, Finished());
  EXPECT_FALSE(control->IsPlaying());
  EXPECT_EQ(0ms, control->Position());

  Played(greeting);  // the event is on its way
  control->StopPlay();
  Start(greeting);
  EXPECT_EQ(1, Finished()) << "a stopped play tells nothing";
  EXPECT_EQ(whole, line.PlayToEnd());
  control.reset();
  EXPECT_EQ(1, Finished());
}

TEST_F(Play, ALateDiskGivesSilenceAndLosesNothing) {
  disk.hangs_from = kSampleRate;  // bytes: after the first half second
  Start(greeting);
  ASSERT_TRUE(Eventually([&] { return disk.held > 0; }));
  Samples played;
  for (auto block = line.Pull(); block != kSilence; block = line.Pull())
    played.insert(played.end(), block->begin(), block->end());
  const auto position = control->Position();
  for (int i = 0; i < 100; ++i) EXPECT_EQ(kSilence, line.Pull());
  EXPECT_EQ(position, control->Position());
  disk.Mend();
  const Samples rest = line.PlayToEnd();
  played.insert(played.end(), rest.begin(), rest.end());
  EXPECT_EQ(whole, played);
}

TEST_F(Play, AFileThatShrinksEndsEarlyAndADeletedOnePlaysOn) {
  WriteWav(other, SF_FORMAT_PCM_16, Noise(60 * kSecond));
  Start(other);
  ASSERT_TRUE(Eventually([&] { return line.Pull()->front() != 0; }));
  std::filesystem::resize_file(other, 30 * kSecond * 2);
  EXPECT_NEAR(30 * kSecond, static_cast<double>(line.PlayToEnd().size()), kSampleRate);
  EXPECT_EQ(1, Finished());

  Start(greeting);
  std::filesystem::remove(greeting);
  control->Seek(1s);  // cannot be done
  EXPECT_EQ(whole, line.PlayToEnd());
}

TEST_F(Play, SeekContinuesThereAndFinishesOnce) {
  control->Seek(1s);  // nothing plays
  Start(greeting);
  control->Seek(2500ms);
  EXPECT_EQ(2500ms, control->Position());
  EXPECT_EQ(Samples(whole.begin() + 2500 * 8, whole.end()), line.PlayToEnd());
  EXPECT_EQ(2999ms, control->Position());
  control->Seek(-1s);  // the end's event is on its way; it is no longer true
  EXPECT_EQ(0, Finished());
  EXPECT_EQ(whole, line.PlayToEnd());
  EXPECT_EQ(1, Finished());

  Start(greeting);
  control->Seek(1h);
  EXPECT_EQ(2999ms, control->Position());
  EXPECT_EQ(Samples(), line.PlayToEnd());
  line.refuse = kWaveNoDevice;  // it has gone since
  control->Seek(1s);
  EXPECT_EQ(2, Finished());
  EXPECT_EQ(kWaveNoDevice, control->PlayFile(greeting, kLine));
  EXPECT_EQ(kWaveNoDevice, control->PlayFile(greeting, kLine + 7));
  EXPECT_FALSE(control->IsPlaying());
}

class WaveformOf : public AudioTest {
 protected:
  void Request(const std::string& name) {
    told.clear();
    reader.Request(messages / name, [this, name](const Waveform& drawn) { told.emplace_back(name, drawn); });
  }

  /// The answer to the request, waited for.
  Waveform Told() {
    EXPECT_TRUE(loop.RunUntil([&] { return !told.empty(); }));
    return told.at(0).second;
  }

  Waveform Draw(const std::string& name) {
    Request(name);
    return Told();
  }

  std::vector<std::pair<std::string, Waveform>> told;
  FileWaveformReader reader{loop};
};

TEST_F(WaveformOf, AFileHasTheLoudestSampleOfEachStretch) {
  std::vector<float> steps(44100 * 4, 0.0F), expected(1000, 0.0F);  // silent, a quarter, silent, half
  std::fill(steps.begin() + 44100, steps.begin() + 44100 * 2, 0.25F);
  std::fill(steps.begin() + 44100 * 3, steps.end(), -0.5F);
  std::fill(expected.begin() + 250, expected.begin() + 500, 0.25F);
  std::fill(expected.begin() + 750, expected.end(), 0.5F);
  WriteWav(messages / "steps.wav", SF_FORMAT_FLOAT, steps, 22050, 2);
  EXPECT_EQ(expected, Draw("steps.wav").peaks);
  EXPECT_EQ(4000ms, told.at(0).second.length);
  WriteWav(messages / "odd.wav", SF_FORMAT_FLOAT, std::vector{0.5F, kNan, -7.0F});
  EXPECT_EQ((std::vector<float>{0.5F, 0.0F, 1.0F}), Draw("odd.wav").peaks);
  WriteWav(messages / "empty.wav", SF_FORMAT_PCM_16, Samples());
  for (const char* name : {"empty.wav", "missing.wav"}) EXPECT_TRUE(Draw(name).peaks.empty()) << name;
}

TEST_F(WaveformOf, OnlyTheNewestRequestIsAnswered) {
  WriteWav(messages / "a.wav", SF_FORMAT_PCM_16, Noise(80000));
  WriteWav(messages / "b.wav", SF_FORMAT_PCM_16, Samples(800, 16384));
  disk.hangs_from = 80000;  // bytes: in the middle of the first
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
