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
  EXPECT_EQ(1, line.ready);
  EXPECT_TRUE(control->IsPlaying());
  EXPECT_EQ(3000ms, control->Position());
  EXPECT_EQ(0, finished);
  loop.Run();
  EXPECT_EQ(1, finished);
  EXPECT_FALSE(control->IsPlaying());
  EXPECT_EQ(0ms, control->Position());
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

TEST_F(Play, SeekGoesOnThereAndFinishesOnce) {
  const Samples whole = Noise(3 * kSecond);
  ASSERT_EQ(kWaveOk, control->PlayFile(greeting, kLine));
  control->Seek(2500ms);
  EXPECT_EQ(2500ms, control->Position());
  EXPECT_EQ(Samples(whole.begin() + 2500 * 8, whole.end()), line.PlayToEnd());
  EXPECT_EQ(3000ms, control->Position());

  control->Seek(-1s);  // the end's event is on its way; it is no longer true
  loop.Run();
  EXPECT_EQ(0, finished);
  EXPECT_EQ(whole, line.PlayToEnd());
  loop.Run();
  EXPECT_EQ(1, finished);

  control->Seek(1s);  // nothing plays
  EXPECT_FALSE(line.Plays());
  EXPECT_EQ(0ms, control->Position());
}

TEST_F(Play, SeekBeyondTheEndOrOnADeviceThatWentEndsThePlay) {
  ASSERT_EQ(kWaveOk, control->PlayFile(greeting, kLine));
  control->Seek(1h);
  EXPECT_EQ(3000ms, control->Position());
  EXPECT_EQ(Samples(), line.PlayToEnd());
  loop.Run();
  EXPECT_EQ(1, finished);

  ASSERT_EQ(kWaveOk, control->PlayFile(greeting, kLine));
  line.refuse = kWaveNoDevice;
  control->Seek(1s);
  loop.Run();
  EXPECT_EQ(2, finished);
  EXPECT_FALSE(control->IsPlaying());
}

TEST_F(Play, SeekInAFileThatIsGonePlaysOnAsItDid) {
  ASSERT_EQ(kWaveOk, control->PlayFile(greeting, kLine));
  std::filesystem::remove(greeting);
  control->Seek(1s);
  EXPECT_EQ(Noise(3 * kSecond), line.PlayToEnd());
}

TEST_F(Play, SeekFindsThePlaceAtAnyRate) {
  const std::string path = folder / "music.wav";
  auto sound = Sine(44100, 1000, 0.5, 2);
  std::fill(sound.begin(), sound.begin() + 44100, 0.0F);
  WriteSound(path, SF_FORMAT_WAV | SF_FORMAT_PCM_16, 44100, 2, sound);
  ASSERT_EQ(kWaveOk, control->PlayFile(path, kLine));
  control->Seek(1s);
  const Samples played = line.PlayToEnd();
  EXPECT_NEAR(kSecond, static_cast<double>(played.size()), kBlock);
  EXPECT_GT(FitSine(Samples(played.begin() + 800, played.end() - 800), 1000).snr, 60);
}

}  // namespace
}  // namespace orven::testing
