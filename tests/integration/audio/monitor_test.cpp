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

}  // namespace
}  // namespace orven::testing
