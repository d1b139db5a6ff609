// SPDX-License-Identifier: GPL-3.0-or-later
// What a caller hears of audio files of every kind, when a play ends, and what ends it.
#include <sys/stat.h>

#include <algorithm>
#include <limits>

#include "integration/audio/audio_test.h"

namespace orven::testing {
namespace {

class Play : public AudioTest {
 protected:
  Play() {
    WriteWav(greeting, SF_FORMAT_PCM_16, whole);
    whole.resize(3 * kSecond);  // the last block is filled up with silence
  }

  Samples Played(const std::string& path) {
    EXPECT_EQ(kWaveOk, control->PlayFile(path, kLine));
    return line.PlayToEnd();
  }

  Samples whole = Noise(3 * kSecond - 8);
  const std::string greeting = messages / "greeting.wav";
  const std::string other = messages / "other.wav";
};

class EveryRate : public Play, public ::testing::WithParamInterface<int> {};

TEST_P(EveryRate, AndEncodingSoundsAsSoxPlaysItFromAnyPlace) {
  const std::string kind = "-r " + std::to_string(GetParam()) + " -c " + std::to_string(GetParam() % 3 + 1);
  int plays = 0;
  for (const std::string encoding :
       {"-b 8 -e u-law", "-b 8 -e a-law", "-b 8 -e unsigned", "-b 24", "-e float"}) {
    Printed("sox -R -n " + kind + " " + encoding + " " + other + " synth 2.085 sine 997 vol 0.5");
    const Samples expected = Read(other);
    EXPECT_NEAR(2.085, control->FileLength(other), 0.001);
    for (const std::size_t start : {0, kSampleRate}) {
      ASSERT_EQ(kWaveOk, control->PlayFile(other, kLine));
      if (start != 0) control->Seek(1s);
      const Samples played = line.PlayToEnd();
      EXPECT_EQ(++plays, Finished());
      ASSERT_EQ((16680 - start + 159) / 160 * 160, played.size());
      int difference = 0;
      for (std::size_t i = 200; i < 8400; ++i)  // without the edges
        difference = std::max(difference, std::abs(played[i] - expected[start + i]));
      EXPECT_LE(difference, GetParam() == 8000 ? 1 : 100) << encoding;  // rounding; another filter
    }
  }
}
INSTANTIATE_TEST_SUITE_P(, EveryRate,
                         ::testing::Values(4000, 8000, 11025, 22050, 44100, 48000, 96000, 192000));

TEST_F(Play, ChannelsAreMixedLoudSoundIsClippedAndNaNIsSilence) {
  constexpr float kNan = std::numeric_limits<float>::quiet_NaN(),
                  kInfinity = std::numeric_limits<float>::infinity();
  WriteWav(other, SF_FORMAT_FLOAT,
           std::vector{0.5F, 0.0F, -0.5F, 1.0F, kNan, 1.0F, 1.0F, kInfinity, 4.0F, 0.0F, 0.0F, -4.0F}, 8000,
           2);
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
  EXPECT_EQ(0, control->FileLength(messages / "no samples.WAV")) << "in any case";
  EXPECT_EQ(Samples(), Played(messages / "no samples.wav"));
  EXPECT_EQ(1, Finished()) << "over at once";
}

TEST_F(Play, FinishedIsToldOnceWhenTheDeviceHasTakenAll) {
  ASSERT_EQ(kWaveOk, control->PlayFile(greeting, kLine));
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
  ASSERT_EQ(kWaveOk, control->PlayFile(greeting, kLine));
  EXPECT_EQ(1, Finished()) << "a stopped play tells nothing";
  EXPECT_TRUE(control->IsPlaying());
  EXPECT_EQ(whole, line.PlayToEnd());
  control.reset();
  EXPECT_EQ(1, Finished());
}

TEST_F(Play, ALateDiskGivesSilenceAndLosesNothing) {
  disk.hold_reads_from = kSampleRate;  // bytes: after the first half second
  ASSERT_EQ(kWaveOk, control->PlayFile(greeting, kLine));
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
  ASSERT_EQ(kWaveOk, control->PlayFile(other, kLine));
  ASSERT_TRUE(Eventually([&] { return line.Pull()->front() != 0; }));
  std::filesystem::resize_file(other, 30 * kSecond * 2);
  EXPECT_NEAR(30 * kSecond, static_cast<double>(line.PlayToEnd().size()), kSampleRate);
  EXPECT_EQ(1, Finished());

  ASSERT_EQ(kWaveOk, control->PlayFile(greeting, kLine));
  std::filesystem::remove(greeting);
  control->Seek(1s);  // cannot be done
  EXPECT_EQ(whole, line.PlayToEnd());
  EXPECT_EQ(2, Finished());
}

TEST_F(Play, SeekContinuesThereAndFinishesOnce) {
  control->Seek(1s);  // nothing plays
  ASSERT_EQ(kWaveOk, control->PlayFile(greeting, kLine));
  control->Seek(2500ms);
  EXPECT_EQ(2500ms, control->Position());
  EXPECT_EQ(Samples(whole.begin() + 2500 * 8, whole.end()), line.PlayToEnd());
  EXPECT_EQ(2999ms, control->Position());
  control->Seek(-1s);  // the end's event is on its way; it is no longer true
  EXPECT_EQ(0, Finished());
  EXPECT_EQ(whole, line.PlayToEnd());
  EXPECT_EQ(1, Finished());

  ASSERT_EQ(kWaveOk, control->PlayFile(greeting, kLine));
  control->Seek(1h);
  EXPECT_EQ(2999ms, control->Position());
  EXPECT_EQ(Samples(), line.PlayToEnd());
  EXPECT_EQ(2, Finished());
  ASSERT_EQ(kWaveOk, control->PlayFile(greeting, kLine));
  line.refuse = kWaveNoDevice;  // it has gone since
  control->Seek(1s);
  EXPECT_EQ(3, Finished());
  EXPECT_EQ(kWaveNoDevice, control->PlayFile(greeting, kLine));
  EXPECT_EQ(kWaveNoDevice, control->PlayFile(greeting, kLine + 7));
  EXPECT_FALSE(control->IsPlaying());
}

}  // namespace
}  // namespace orven::testing
