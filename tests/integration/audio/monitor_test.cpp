// SPDX-License-Identifier: GPL-3.0-or-later
// Listening in while a caller speaks, and everything at once.
#include <sndfile.h>

#include <atomic>
#include <thread>

#include "integration/audio/audio_test.h"

namespace orven::testing {
namespace {

using Monitor = AudioTest;

Samples Block(std::int16_t value) {
  return Samples(kBlockSamples, value);
}

TEST_F(Monitor, TheCallerIsHeardSoonAndInOrder) {
  ASSERT_EQ(kWaveOk, control->StartRecord(kLine, kPcm));
  line.Capture(Block(99));  // before listening
  ASSERT_EQ(kWaveOk, control->StartMonitor(kCard, kPcm));
  EXPECT_EQ(Block(0), card.Pull());
  std::vector<std::int16_t> heard;
  for (std::int16_t i = 1; i <= 100; ++i) {
    line.Capture(Block(i));
    heard.push_back(card.Pull()->front());
  }
  EXPECT_EQ(0, heard[0]);  // gathering a stock of two blocks
  for (std::int16_t i = 1; i < 100; ++i) EXPECT_EQ(i, heard[static_cast<std::size_t>(i)]);
}

TEST_F(Monitor, ItNeedsARecordingAndADevice) {
  EXPECT_EQ(kWaveNotRecording, control->StartMonitor(kCard, kPcm));
  EXPECT_EQ(kWaveOk, control->StopMonitor());
  ASSERT_EQ(kWaveOk, control->StartRecord(kLine, kMuLaw));
  EXPECT_EQ(kWaveNoDevice, control->StartMonitor(7, kMuLaw));
  EXPECT_EQ(kWaveBadFormat, control->StartMonitor(kCard, {1, 2, 16, 44100}));
  card.refuse = kWaveNoDevice;
  EXPECT_EQ(kWaveNoDevice, control->StartMonitor(kCard, kMuLaw));
  card.refuse = kWaveOk;
  ASSERT_EQ(kWaveOk, control->StartMonitor(kCard, kMuLaw));
  EXPECT_EQ(kWaveBusy, control->StartMonitor(kCard, kMuLaw));

  ASSERT_EQ(kWaveOk, control->StopRecordToFile(messages / "m.wav"));
  EXPECT_EQ(Block(0), card.Pull()) << "goes on, silent";
  EXPECT_EQ(kWaveOk, control->StopMonitor());
  EXPECT_FALSE(card.Plays());
}

TEST_F(Monitor, PlayingRecordingAndListeningGoOnSideBySide) {
  const Samples spoken = Noise(30 * kSecond, 1);
  const Samples greeting = Noise(30 * kSecond, 2);
  WriteSound(folder / "greeting.wav", SF_FORMAT_WAV | SF_FORMAT_PCM_16, greeting);
  ASSERT_EQ(kWaveOk, control->StartRecord(kLine, kPcm));
  ASSERT_EQ(kWaveOk, control->StartMonitor(kCard, kPcm));
  ASSERT_EQ(kWaveOk, control->PlayFile(folder / "greeting.wav", kLine));
  std::atomic<bool> listening{true};
  std::thread listener([&] {
    while (listening) card.Pull();
  });
  std::thread caller([&] { line.Capture(spoken); });
  Samples played;
  std::thread hearer([&] { played = line.PlayToEnd(); });
  ASSERT_TRUE(Eventually([&] {
    loop.Run();
    EXPECT_GE(1000, control->InputLevel());
    EXPECT_GE(std::chrono::seconds(30), control->Position());
    return finished == 1;
  }));
  hearer.join();
  caller.join();
  ASSERT_EQ(kWaveOk, control->StopRecordToFile(messages / "m.wav"));
  EXPECT_EQ(kWaveOk, control->StopMonitor());
  listening = false;
  listener.join();
  EXPECT_EQ(greeting, played);
  EXPECT_EQ(spoken, ReadWithSox(messages / "m.wav"));
}

}  // namespace
}  // namespace orven::testing
