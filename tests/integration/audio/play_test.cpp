// SPDX-License-Identifier: GPL-3.0-or-later
// When a play ends, and what ends it.
#include <sndfile.h>

#include <filesystem>
#include <set>

#include "integration/audio/audio_test.h"

namespace orven::testing {
namespace {

using namespace std::chrono_literals;

class Play : public AudioTest {
 protected:
  Play() {
    WriteSound(greeting, SF_FORMAT_WAV | SF_FORMAT_PCM_16, Noise(3 * kSecond));
    WriteSound(beep, SF_FORMAT_WAV | SF_FORMAT_PCM_16, Noise(kSecond / 5, 2));
  }

  const std::string greeting = folder / "greeting.wav";
  const std::string beep = folder / "beep.wav";
};

TEST_F(Play, FinishedIsToldOnceWhenTheDeviceHasTakenAll) {
  ASSERT_EQ(kWaveOk, control->PlayFile(greeting, kLine));
  EXPECT_EQ(3 * kSecond, line.PlayToEnd().size());
  EXPECT_TRUE(control->IsPlaying());
  EXPECT_EQ(3000ms, control->Position());
  EXPECT_EQ(0, finished);
  loop.Run();
  EXPECT_EQ(1, finished);
  EXPECT_FALSE(control->IsPlaying());
  EXPECT_EQ(0ms, control->Position());
}

TEST_F(Play, OnePlayLeadsToTheNext) {
  Samples beeped;
  on_finished = [&] {
    if (finished > 1) return;
    EXPECT_FALSE(control->IsPlaying());
    EXPECT_EQ(kWaveOk, control->PlayFile(beep, kLine));
    beeped = line.PlayToEnd();
  };
  ASSERT_EQ(kWaveOk, control->PlayFile(greeting, kLine));
  line.PlayToEnd();
  loop.Run();
  EXPECT_EQ(Noise(kSecond / 5, 2), beeped);
  EXPECT_EQ(2, finished);
}

TEST_F(Play, NothingIsToldAfterStop) {
  ASSERT_EQ(kWaveOk, control->PlayFile(greeting, kLine));
  line.PlayToEnd();  // the event is on its way
  control->StopPlay();
  EXPECT_FALSE(control->IsPlaying());
  loop.Run();
  EXPECT_EQ(0, finished);
}

TEST_F(Play, AnEarlierPlayDoesNotEndTheNextOne) {
  ASSERT_EQ(kWaveOk, control->PlayFile(beep, kLine));
  line.PlayToEnd();
  control->StopPlay();
  ASSERT_EQ(kWaveOk, control->PlayFile(greeting, kLine));
  loop.Run();
  EXPECT_EQ(0, finished);
  EXPECT_TRUE(control->IsPlaying());
  EXPECT_EQ(3 * kSecond, line.PlayToEnd().size());
  loop.Run();
  EXPECT_EQ(1, finished);
}

TEST_F(Play, NothingIsToldAfterDestruction) {
  ASSERT_EQ(kWaveOk, control->PlayFile(beep, kLine));
  line.PlayToEnd();
  control.reset();
  loop.Run();
  EXPECT_EQ(0, finished);
}

TEST_F(Play, StopAndDestructionInMidPlayReleaseTheDevice) {
  ASSERT_EQ(kWaveOk, control->PlayFile(greeting, kLine));
  ASSERT_TRUE(line.Pull());
  control->StopPlay();
  EXPECT_FALSE(line.Plays());
  control->StopPlay();
  ASSERT_EQ(kWaveOk, control->PlayFile(greeting, kLine));
  control.reset();
  EXPECT_FALSE(line.Plays());
}

TEST_F(Play, OneFileAtATimeOnADeviceThatIsThere) {
  EXPECT_EQ(kWaveNoDevice, control->PlayFile(greeting, kLine + 7));
  line.refuse = kWaveNoDevice;
  EXPECT_EQ(kWaveNoDevice, control->PlayFile(greeting, kLine));
  EXPECT_FALSE(control->IsPlaying());
  line.refuse = kWaveOk;
  ASSERT_EQ(kWaveOk, control->PlayFile(greeting, kLine));
  EXPECT_EQ(kWaveBusy, control->PlayFile(beep, kCard));
  EXPECT_EQ(3 * kSecond, line.PlayToEnd().size());
}

TEST_F(Play, PositionFollowsTheDevice) {
  ASSERT_EQ(kWaveOk, control->PlayFile(greeting, kLine));
  ASSERT_TRUE(Eventually([&] { return line.Pull()->front() != 0; }));
  EXPECT_EQ(20ms, control->Position());
  while (control->Position() < 1s) ASSERT_TRUE(line.Pull());
  EXPECT_EQ(1s, control->Position());
}

TEST_F(Play, ALateDiskGivesSilenceAndLosesNothing) {
  const Samples silence(kBlockSamples, 0);
  folder_disk.HoldReads(kSampleRate);  // bytes: after the first half second
  ASSERT_EQ(kWaveOk, control->PlayFile(greeting, kLine));
  ASSERT_TRUE(Eventually([&] { return folder_disk.Holds(); }));
  Samples played;
  for (auto block = line.Pull(); block != silence; block = line.Pull())
    played.insert(played.end(), block->begin(), block->end());
  const auto position = control->Position();
  for (int i = 0; i < 100; ++i) EXPECT_EQ(silence, line.Pull());
  EXPECT_EQ(position, control->Position());
  folder_disk.Release();
  const Samples rest = line.PlayToEnd();
  played.insert(played.end(), rest.begin(), rest.end());
  EXPECT_EQ(Noise(3 * kSecond), played);
}

TEST_F(Play, StoppingDoesNotWaitForTheDisk) {
  folder_disk.HoldReads(1000);
  ASSERT_EQ(kWaveOk, control->PlayFile(greeting, kLine));
  ASSERT_TRUE(Eventually([&] { return folder_disk.Holds(); }));
  control->StopPlay();  // would never return
  EXPECT_FALSE(control->IsPlaying());
  folder_disk.Release();
}

TEST_F(Play, AFileThatShrinksOrGoesEndsWhereItEnds) {
  const std::string path = folder / "long.wav";
  WriteSound(path, SF_FORMAT_WAV | SF_FORMAT_PCM_16, Noise(60 * kSecond));
  ASSERT_EQ(kWaveOk, control->PlayFile(path, kLine));
  ASSERT_TRUE(Eventually([&] { return line.Pull()->front() != 0; }));
  std::filesystem::resize_file(path, 30 * kSecond * 2);
  const std::size_t played = line.PlayToEnd().size();
  EXPECT_NEAR(30 * kSecond, static_cast<double>(played), kSampleRate);
  loop.Run();
  EXPECT_EQ(1, finished);

  ASSERT_EQ(kWaveOk, control->PlayFile(greeting, kLine));
  std::filesystem::remove(greeting);
  EXPECT_EQ(Noise(3 * kSecond), line.PlayToEnd());
  loop.Run();
  EXPECT_EQ(2, finished);
}

TEST_F(Play, EveryResultHasItsText) {
  std::set<std::string> play_texts;
  std::set<std::string> record_texts;
  for (std::int32_t code = kWaveOk; code <= kWaveWriteFailed; ++code) {
    play_texts.insert(control->PlayErrorText(code));
    record_texts.insert(control->RecordErrorText(code));
  }
  EXPECT_EQ(11U, play_texts.size());
  EXPECT_EQ(11U, record_texts.size());
  EXPECT_EQ("The operation completed successfully.", control->RecordErrorText(kWaveOk));
  EXPECT_EQ("Unknown wave error -5.", control->PlayErrorText(-5));
  EXPECT_EQ("Unknown wave error 11.", control->RecordErrorText(11));
}

}  // namespace
}  // namespace orven::testing
