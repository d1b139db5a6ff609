// SPDX-License-Identifier: GPL-3.0-or-later
// How audio files of every kind are played to a caller, when playback ends, and the waveform of a file.
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
    PutWave(greeting, whole);
    whole.resize(3 * kSampleRate);  // the last block is padded with silence
  }

  void Start(const std::string& path) { ASSERT_EQ(kWaveOk, control->PlayFile(path, kLine)) << path; }
  Samples Played(const std::string& path) {
    Start(path);
    return line.Play();
  }

  Samples whole = Noise(3 * kSampleRate - 8);
  const std::string greeting = messages / "greeting.wav", other = messages / "other.wav";
};

TEST_F(Play, EveryRateAndEncodingSoundsAsInSoxFromAnyPosition) {
  for (const std::string format :
       {"-r 4000 -c 2 -b 8 -e u-law", "-r 8000 -b 8 -e a-law", "-r 44100 -c 3 -b 24"}) {
    const std::string command = "sox -R -n " + format + " " + other + " synth 2.085 sine 997 vol 0.5";
    ASSERT_EQ(0, std::system(command.c_str()));
    const Samples expected = Read(other);
    EXPECT_NEAR(2.085, control->FileLength(other), 0.001);
    for (const std::size_t start : {0, kSampleRate}) {
      Start(other);
      if (start != 0) control->Seek(1s);
      const Samples played = line.Play();
      Finished();
      ASSERT_EQ((16680 - start + 159) / 160 * 160, played.size());
      for (std::size_t i = 200; i < 8400; ++i)  // without the edges: sox uses another filter
        ASSERT_NEAR(expected[start + i], played[i], format.starts_with("-r 8000") ? 1 : 100) << format;
    }
  }
}

TEST_F(Play, ChannelsAreMixedLoudSoundIsClippedAndNaNIsSilence) {
  constexpr float kInfinity = std::numeric_limits<float>::infinity();
  const std::vector frames{0.5F, 0.0F, -0.5F, 1.0F, kNan, 1.0F, 1.0F, kInfinity, 4.0F, 0.0F, 0.0F, -4.0F};
  PutWave(other, frames, SF_FORMAT_FLOAT, 8000, 2);
  Samples mixed{8192, 8192, 0, 0, 32767, -32768};
  mixed.resize(kBlockSamples);
  EXPECT_EQ(mixed, Played(other));
}

TEST_F(Play, AFileWithoutAudioIsRefusedAtOnce) {
  PutFile(messages / "empty.wav", "");
  PutFile(messages / "text.wav", std::string(10000, 'x'));
  PutFile(messages / "riff.wav", "RIFF\xff\xff\xff\xffWAVEfmt ");
  PutWave(messages / "slow.wav", Noise(31), SF_FORMAT_PCM_16, 31);
  PutWave(messages / "no samples.wav", Samples());
  ASSERT_EQ(0, mkfifo((messages / "pipe.wav").c_str(), 0600));
  const std::map<std::string, int> results{
      {"missing.wav", kWaveFileNotFound}, {"text.wav/below.wav", kWaveFileNotFound},
      {".", kWaveFileUnreadable},         {"empty.wav", kWaveFileUnreadable},
      {"text.wav", kWaveFileUnreadable},  {"slow.wav", kWaveBadFormat},
      {"riff.wav", kWaveFileUnreadable},  {"pipe.wav", kWaveFileUnreadable}};
  for (const auto& [name, result] : results) {
    EXPECT_EQ(result, control->PlayFile(messages / name, kLine)) << name;
    EXPECT_TRUE(control->PlayErrorText(result).ends_with(" (\"" + messages / name + "\")")) << name;
    EXPECT_EQ(name == "slow.wav", control->FileLength(messages / name) > 0) << name;
  }
  EXPECT_FALSE(control->IsPlaying() || line.source);
  EXPECT_EQ(0, control->FileLength(messages / "no samples.WAV")) << "whatever the case of its extension";
  EXPECT_EQ(Samples(), Played(messages / "no samples.wav"));
  EXPECT_EQ(1, Finished()) << "a file without samples ends at once";
}

TEST_F(Play, FinishedIsReportedOnceWhenTheDeviceHasTakenEverything) {
  Start(greeting);
  EXPECT_EQ(kWaveBusy, control->PlayFile(greeting, kCard));
  EXPECT_EQ(whole, line.Play());
  EXPECT_EQ(1, line.ready);
  EXPECT_TRUE(control->IsPlaying());
  EXPECT_EQ(0, finished);
  EXPECT_EQ(1, Finished());
  EXPECT_FALSE(control->IsPlaying());
  EXPECT_EQ(0ms, control->Position());

  Played(greeting);  // its event is still queued
  control->StopPlay();
  Start(greeting);
  EXPECT_EQ(1, Finished()) << "a stopped playback sends no event";
}

TEST_F(Play, ASlowDiskCausesSilenceButLosesNothing) {
  disk.hangs_from = kSampleRate;  // in bytes: after the first half second
  Start(greeting);
  ASSERT_TRUE(Eventually([&] { return disk.held > 0; }));
  control->StopPlay();  // does not wait for the disk
  EXPECT_GT(disk.held, 0);
  Start(greeting);
  ASSERT_TRUE(Eventually([&] { return disk.held > 1; }));
  Samples played = line.Play(200);
  EXPECT_EQ(played.size() / 8, static_cast<std::size_t>(control->Position().count()));
  disk.Mend();
  const Samples rest = line.Play();
  played.insert(played.end(), rest.begin(), rest.end());
  EXPECT_EQ(whole, played);
}

TEST_F(Play, SeekContinuesAtThePositionAndFinishesOnce) {
  control->Seek(1s);  // has no effect: nothing is playing
  Start(greeting);
  control->Seek(2500ms);
  EXPECT_EQ(2500ms, control->Position());
  EXPECT_EQ(Samples(whole.begin() + 2500 * 8, whole.end()), line.Play());
  EXPECT_EQ(2999ms, control->Position());
  control->Seek(-1s);  // the queued event of the end is obsolete now
  EXPECT_EQ(0, Finished());
  EXPECT_EQ(whole, line.Play());
  EXPECT_EQ(1, Finished());

  Start(greeting);
  control->Seek(1h);
  EXPECT_EQ(2999ms, control->Position());
  EXPECT_EQ(Samples(), line.Play());
  line.refuse = kWaveNoDevice;  // the device has disappeared since
  control->Seek(1s);
  EXPECT_EQ(2, Finished());
  EXPECT_EQ(kWaveNoDevice, control->PlayFile(greeting, kLine));
  EXPECT_EQ(kWaveNoDevice, control->PlayFile(greeting, kLine + 7));
  EXPECT_FALSE(control->IsPlaying());
}

TEST_F(Play, TheWaveformHasThePeakOfEachSectionAndOnlyTheLatestRequestIsAnswered) {
  std::vector<float> steps(44100 * 4, 0.0F), expected(1000, 0.0F);  // silent, a quarter, silent, half
  std::fill(steps.begin() + 44100, steps.begin() + 44100 * 2, 0.25F);
  std::fill(steps.begin() + 44100 * 3, steps.end(), -0.5F);
  std::fill(expected.begin() + 250, expected.begin() + 500, 0.25F);
  std::fill(expected.begin() + 750, expected.end(), 0.5F);
  PutWave(messages / "steps.wav", steps, SF_FORMAT_FLOAT, 22050, 2);
  PutWave(messages / "odd.wav", std::vector{0.5F, kNan, -7.0F}, SF_FORMAT_FLOAT);
  PutWave(messages / "empty.wav", Samples());
  FileWaveformReader reader(loop);
  std::string told;
  Waveform picture;
  const auto request = [&](const std::string& name) {
    reader.Request(messages / name, [&, name](const Waveform& drawn) {
      told += name;
      picture = drawn;
    });
  };
  disk.hangs_from = 200000;  // in bytes: in the middle of the first file
  request("steps.wav");
  ASSERT_TRUE(Eventually([&] { return disk.held > 0; }));
  request("steps.wav");
  request("odd.wav");
  disk.Mend();
  EXPECT_TRUE(loop.RunUntil([&] { return told == "odd.wav"; }));
  EXPECT_EQ((std::vector<float>{0.5F, 0.0F, 1.0F}), picture.peaks);
  request("odd.wav");
  reader.Cancel();
  request("steps.wav");
  EXPECT_TRUE(loop.RunUntil([&] { return told == "odd.wavsteps.wav"; }));
  EXPECT_EQ(expected, picture.peaks);
  EXPECT_EQ(4000ms, picture.length);
  request("empty.wav");
  EXPECT_TRUE(loop.RunUntil([&] { return told.ends_with("empty.wav"); }));
  EXPECT_TRUE(picture.peaks.empty());
}

}  // namespace
}  // namespace orven::testing
