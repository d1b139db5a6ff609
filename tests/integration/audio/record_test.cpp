// SPDX-License-Identifier: GPL-3.0-or-later
// Recording: what is on disk meanwhile and afterwards, what is heard and measured of it.
#include <algorithm>
#include <csignal>

#include "integration/audio/audio_test.h"

namespace orven::testing {
namespace {

Samples Block(int value) {
  return Samples(kBlockSamples, static_cast<std::int16_t>(value));
}

class Record : public AudioTest {
 protected:
  /// The file of the recording that grows, once it holds `count` samples.
  std::string GrowingWith(std::size_t count) {
    std::string path;
    EXPECT_TRUE(Eventually([&] {
      for (const std::string& name : messages.Names(".wav.part")) path = messages / name;
      return Read(path).size() == count;
    }));
    return path;
  }

  Samples ThroughMuLaw(const Samples& samples) {
    WriteWav(rescue / "mulaw.wav", SF_FORMAT_ULAW, samples);
    return Read(rescue / "mulaw.wav");
  }
};

TEST_F(Record, TheFileHoldsExactlyWhatWasCaptured) {
  const Samples spoken = Noise(7 * kSecond);
  for (const bool to_disk : {true, false}) {
    for (const bool pcm : {true, false}) {
      PutFile(message, std::string(1'000'000, 'x'));  // an older one
      control->SetRecordToDisk(to_disk);
      ASSERT_EQ(kWaveOk, control->StartRecord(kLine, pcm ? kPcm : kMuLaw));
      EXPECT_TRUE(control->IsRecording());
      line.Capture(spoken);
      ASSERT_EQ(kWaveOk, control->StopRecordToFile(message));
      EXPECT_FALSE(control->IsRecording() || line.sink);
      EXPECT_EQ(pcm ? spoken : ThroughMuLaw(spoken), Read(message));
      EXPECT_EQ(pcm ? "Signed Integer PCM\n8000\n1\n" : "u-law\n8000\n1\n",
                Printed("for what in -e -r -c; do soxi $what " + message + "; done"));
      EXPECT_EQ(7.0, control->FileLength(message));
      EXPECT_EQ(std::vector<std::string>{"m.wav"}, messages.Names()) << "something is left over";
    }
  }
}

TEST_F(Record, WhatCannotBeRecordedIsRefused) {
  for (const WaveFormat& wrong :
       {WaveFormat{1, 2, 16, 8000}, {1, 1, 8, 8000}, {7, 1, 16, 8000}, {1, 1, 16, 11025}}) {
    EXPECT_EQ(kWaveBadFormat, control->QueryRecordFormat(kLine, 1, wrong));
    EXPECT_EQ(kWaveBadFormat, control->StartRecord(kLine, wrong));
  }
  EXPECT_EQ(kWaveOk, control->QueryRecordFormat(kLine, 1, kMuLaw));
  EXPECT_EQ(kWaveNoDevice, control->QueryRecordFormat(kLine + 7, 1, kPcm));
  EXPECT_EQ(kWaveNoDevice, control->StartRecord(kLine + 7, kPcm));
  line.refuse = kWaveNoDevice;
  EXPECT_EQ(kWaveNoDevice, control->StartRecord(kLine, kPcm));
  line.refuse = kWaveOk;
  EXPECT_EQ(kWaveNotRecording, control->StopRecordToFile(message));
  ASSERT_EQ(kWaveOk, control->StartRecord(kLine, kPcm));
  EXPECT_EQ(kWaveBusy, control->StartRecord(kCard, kPcm));
}

TEST_F(Record, LevelIsThePeakOfTheLastBlockInThousandths) {
  EXPECT_EQ(0, control->InputLevel());
  ASSERT_EQ(kWaveOk, control->StartRecord(kLine, kPcm));
  for (const auto& [sample, level] :
       std::map<int, int>{{-32768, 1000}, {32767, 999}, {-33, 1}, {0, 0}, {20000, 610}}) {
    Samples block = Block(0);
    block[77] = static_cast<std::int16_t>(sample);
    line.Capture(block);
    EXPECT_EQ(level, control->InputLevel());
  }
  EXPECT_TRUE(Eventually([&] { return control->InputLevel() == 0; })) << "the device delivers no more";
  line.Capture(Block(20000));
  ASSERT_EQ(kWaveOk, control->StopRecordToFile(message));
  EXPECT_EQ(0, control->InputLevel());

  for (const auto& [device, level] : std::map<int, int>{{kLine, 500}, {kCard, 0}}) {
    ASSERT_EQ(kWaveOk, control->PlayFile(message, device)) << "a greeting";
    line.Capture(Block(16384));
    EXPECT_EQ(level, control->InputLevel());
    control->StopPlay();
    EXPECT_EQ(0, control->InputLevel());
  }
}

TEST_F(Record, TheGrowingFileCanBeReadAtAnyTime) {
  ASSERT_EQ(kWaveOk, control->StartRecord(kLine, kMuLaw));
  ASSERT_EQ(kWaveOk, control->StartMonitor(kCard, kMuLaw));
  for (std::size_t second = 1; second <= 4; ++second) {
    const Samples so_far = Noise(second * kSecond);
    line.Capture(Samples(so_far.end() - kSampleRate, so_far.end()));
    EXPECT_EQ(ThroughMuLaw(so_far), Read(GrowingWith(so_far.size())));
  }
  EXPECT_TRUE(messages.Names(".wav").empty()) << "unfinished audio in a listing of *.wav";
  line.Capture(Block(1));
  control.reset();
  EXPECT_FALSE(line.sink || card.source);
  EXPECT_EQ(4 * kSecond + kBlockSamples, Read(messages / messages.Names(".wav.part").at(0)).size());
}

TEST_F(Record, AKilledProgramLeavesWhatItHasRecorded) {
  const Samples spoken = Noise(9 * kSecond);
  const auto record_and_die = [&] {
    control->StartRecord(kLine, kPcm);
    line.Capture(Samples(spoken.begin(), spoken.begin() + kSecond));
    GrowingWith(kSecond);
    line.Capture(Samples(spoken.begin() + kSecond, spoken.end()));
    raise(SIGKILL);
  };
  EXPECT_EXIT(record_and_die(), ::testing::KilledBySignal(SIGKILL), "");
  const Samples left = Read(messages / messages.Names().at(0));
  ASSERT_TRUE(left.size() >= kSecond && left.size() <= spoken.size());
  EXPECT_TRUE(std::equal(left.begin(), left.end(), spoken.begin()));
}

TEST_F(Record, TheMonitorPlaysTheCallerSoonAndInOrder) {
  EXPECT_EQ(kWaveNotRecording, control->StartMonitor(kCard, kPcm));
  EXPECT_EQ(kWaveOk, control->StopMonitor());
  ASSERT_EQ(kWaveOk, control->StartRecord(kLine, kPcm));
  line.Capture(Block(99));  // before listening
  EXPECT_EQ(kWaveNoDevice, control->StartMonitor(7, kMuLaw));
  EXPECT_EQ(kWaveBadFormat, control->StartMonitor(kCard, {1, 2, 16, 44100}));
  card.refuse = kWaveNoDevice;
  EXPECT_EQ(kWaveNoDevice, control->StartMonitor(kCard, kMuLaw));
  card.refuse = kWaveOk;
  ASSERT_EQ(kWaveOk, control->StartMonitor(kCard, kMuLaw));
  EXPECT_EQ(kWaveBusy, control->StartMonitor(kCard, kMuLaw));
  EXPECT_EQ(Block(0), card.Pull());
  for (int i = 1; i <= 100; ++i) {
    line.Capture(Block(i));
    EXPECT_EQ(Block(i - 1), card.Pull()) << "one block is in stock";
  }
  for (int i = 101; i <= 110; ++i) line.Capture(Block(i));  // nobody listens meanwhile
  for (const int i : {109, 110, 0}) EXPECT_EQ(Block(i), card.Pull()) << "the delay stays short";
  ASSERT_EQ(kWaveOk, control->StopRecordToFile(message));
  EXPECT_EQ(Block(0), card.Pull()) << "continues, silent";
  EXPECT_EQ(kWaveOk, control->StopMonitor());
  EXPECT_EQ(std::nullopt, card.Pull());
}

TEST_F(Record, PlayingRecordingAndListeningWorkSideBySide) {
  const Samples spoken = Noise(30 * kSecond, 1), greeting = Noise(30 * kSecond, 2);
  WriteWav(messages / "greeting.wav", SF_FORMAT_PCM_16, greeting);
  ASSERT_EQ(kWaveOk, control->StartRecord(kLine, kPcm));
  ASSERT_EQ(kWaveOk, control->StartMonitor(kCard, kPcm));
  ASSERT_EQ(kWaveOk, control->PlayFile(messages / "greeting.wav", kLine));
  Samples played;
  {
    std::jthread caller([&] { line.Capture(spoken); });
    std::jthread hearer([&] { played = line.PlayToEnd(); });
    std::jthread listener([&] {
      while (finished == 0) card.Pull();
    });
    EXPECT_TRUE(Eventually([&] { return Finished() == 1 && control->InputLevel() <= 1000; }));
  }
  EXPECT_EQ(kWaveOk, control->StopRecordToFile(message));
  EXPECT_EQ(greeting, played);
  EXPECT_EQ(spoken, Read(message));
}

}  // namespace
}  // namespace orven::testing
