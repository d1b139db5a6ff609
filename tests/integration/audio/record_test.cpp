// SPDX-License-Identifier: GPL-3.0-or-later
// Recording while everything goes well.
#include <filesystem>
#include <thread>

#include "integration/audio/audio_test.h"

namespace orven::testing {
namespace {

class Record : public AudioTest {
 protected:
  /// The recording that grows, once it holds `samples` samples.
  std::string GrowingWith(std::size_t samples) {
    std::string path;
    EXPECT_TRUE(Eventually([&] {
      for (const std::string& name : messages.Names(".wav.part")) path = messages / name;
      const auto content = ReadWithSndfile(path);
      return content && content->size() == samples;
    }));
    return path;
  }
};

TEST_F(Record, TheFileHoldsExactlyWhatWasCaptured) {
  const Samples spoken = Noise(7 * kSecond);
  const Samples spoken_mu_law = ThroughMuLaw(spoken);
  for (const bool to_disk : {true, false}) {
    for (const WaveFormat& format : {kPcm, kMuLaw}) {
      const bool pcm = format == kPcm;
      const std::string path = messages / "message.wav";
      control->SetRecordToDisk(to_disk);
      ASSERT_EQ(kWaveOk, control->StartRecord(kLine, format));
      EXPECT_TRUE(control->IsRecording());
      line.Capture(pcm ? spoken : spoken_mu_law);
      ASSERT_EQ(kWaveOk, control->StopRecordToFile(path));
      EXPECT_FALSE(control->IsRecording());
      EXPECT_FALSE(line.Records());
      EXPECT_EQ(pcm ? spoken : spoken_mu_law, ReadWithSox(path));
      EXPECT_EQ(pcm ? "Signed Integer PCM" : "u-law", Soxi("-e", path));
      EXPECT_EQ("8000", Soxi("-r", path));
      EXPECT_EQ("1", Soxi("-c", path));
      EXPECT_EQ(7.0, control->FileLength(path));
      EXPECT_EQ(1U, messages.Names().size()) << "something is left over";
    }
  }
  EXPECT_TRUE(rescue.Names().empty());
}

TEST_F(Record, LinearSoundBecomesTheNearestMuLaw) {
  const Samples spoken = Noise(kSecond);
  ASSERT_EQ(kWaveOk, control->StartRecord(kLine, kMuLaw));
  line.Capture(spoken);
  ASSERT_EQ(kWaveOk, control->StopRecordToFile(folder / "m.wav"));
  EXPECT_EQ(ThroughMuLaw(spoken), ReadWithSox(folder / "m.wav"));
}

TEST_F(Record, AnOlderFileIsReplaced) {
  for (const bool to_disk : {true, false}) {
    control->SetRecordToDisk(to_disk);
    WriteText(messages / "m.wav", std::string(1'000'000, 'x'));
    ASSERT_EQ(kWaveOk, control->StartRecord(kLine, kPcm));
    line.Capture(Noise(kSecond));
    ASSERT_EQ(kWaveOk, control->StopRecordToFile(messages / "m.wav"));
    EXPECT_EQ(Noise(kSecond), ReadWithSox(messages / "m.wav"));
    EXPECT_EQ(1U, messages.Names().size());
  }
}

TEST_F(Record, WhatCannotBeRecordedIsRefused) {
  for (const WaveFormat& wrong :
       {WaveFormat{1, 2, 16, 8000}, WaveFormat{1, 1, 8, 8000}, WaveFormat{7, 1, 16, 8000},
        WaveFormat{1, 1, 16, 11025}, WaveFormat{6, 1, 8, 8000}}) {
    EXPECT_EQ(kWaveBadFormat, control->QueryRecordFormat(kLine, 1, wrong));
    EXPECT_EQ(kWaveBadFormat, control->StartRecord(kLine, wrong));
  }
  EXPECT_EQ(kWaveOk, control->QueryRecordFormat(kLine, 1, kPcm));
  EXPECT_EQ(kWaveOk, control->QueryRecordFormat(kLine, 1, kMuLaw));
  EXPECT_EQ(kWaveNoDevice, control->QueryRecordFormat(kLine + 7, 1, kPcm));
  EXPECT_EQ(kWaveNoDevice, control->StartRecord(kLine + 7, kPcm));
  line.refuse = kWaveNoDevice;
  EXPECT_EQ(kWaveNoDevice, control->StartRecord(kLine, kPcm));
  line.refuse = kWaveOk;
  EXPECT_FALSE(control->IsRecording());
  EXPECT_EQ(kWaveNotRecording, control->StopRecordToFile(messages / "m.wav"));

  ASSERT_EQ(kWaveOk, control->StartRecord(kLine, kPcm));
  EXPECT_EQ(kWaveBusy, control->StartRecord(kCard, kPcm));
  ASSERT_EQ(kWaveOk, control->StopRecordToFile(messages / "m.wav"));
  EXPECT_EQ(kWaveNotRecording, control->StopRecordToFile(messages / "m.wav"));
  EXPECT_EQ(std::vector<std::string>{"m.wav"}, messages.Names());
}

TEST_F(Record, LevelIsThePeakOfTheLastBlockInThousandths) {
  EXPECT_EQ(0, control->InputLevel());
  ASSERT_EQ(kWaveOk, control->StartRecord(kLine, kPcm));
  EXPECT_EQ(0, control->InputLevel());
  for (const auto& [sample, level] :
       std::map<int, int>{{-32768, 1000}, {32767, 999}, {16384, 500}, {-33, 1}, {32, 0}}) {
    Samples block(kBlockSamples, 0);
    block[77] = static_cast<std::int16_t>(sample);
    line.Capture(block);
    EXPECT_EQ(level, control->InputLevel());
  }
  line.Capture(Samples(kBlockSamples, 20000));
  line.Capture(Samples(kBlockSamples, 0));
  EXPECT_EQ(0, control->InputLevel());
  line.Capture(Samples(kBlockSamples, 20000));
  EXPECT_TRUE(Eventually([&] { return control->InputLevel() == 0; })) << "the device delivers no more";
  line.Capture(Samples(kBlockSamples, 20000));
  ASSERT_EQ(kWaveOk, control->StopRecordToFile(messages / "m.wav"));
  EXPECT_EQ(0, control->InputLevel());

  for (const auto& [device, level] : std::map<int, int>{{kLine, 500}, {kCard, 0}}) {
    ASSERT_EQ(kWaveOk, control->PlayFile(messages / "m.wav", device)) << "a greeting";
    line.Capture(Samples(kBlockSamples, 16384));
    EXPECT_EQ(level, control->InputLevel());
    control->StopPlay();
    EXPECT_EQ(0, control->InputLevel());
  }
}

TEST_F(Record, TheGrowingFileCanBeReadAtAnyTime) {
  const Samples spoken = Noise(5 * kSecond);
  ASSERT_EQ(kWaveOk, control->StartRecord(kLine, kMuLaw));
  Samples so_far;
  for (std::size_t second = 0; second < 5; ++second) {
    const auto from = spoken.begin() + static_cast<std::ptrdiff_t>(second * kSecond);
    const Samples news(from, from + kSecond);
    line.Capture(news);
    so_far.insert(so_far.end(), news.begin(), news.end());
    const std::string growing = GrowingWith(so_far.size());
    EXPECT_EQ(ThroughMuLaw(so_far), ReadWithSox(growing));
  }
  EXPECT_TRUE(messages.Names(".wav").empty()) << "unfinished sound in a listing of *.wav";
  ASSERT_EQ(kWaveOk, control->StopRecordToFile(messages / "m.wav"));
  EXPECT_EQ(std::vector<std::string>{"m.wav"}, messages.Names());
}

TEST_F(Record, DestructionInMidRecordingLeavesItOnDisk) {
  ASSERT_EQ(kWaveOk, control->StartRecord(kLine, kPcm));
  ASSERT_EQ(kWaveOk, control->StartMonitor(kCard, kPcm));
  line.Capture(Noise(3 * kSecond));
  control.reset();
  EXPECT_FALSE(line.Records());
  EXPECT_FALSE(card.Plays());
  const auto left = messages.Names(".wav.part");
  ASSERT_EQ(1U, left.size());
  EXPECT_EQ(Noise(3 * kSecond), ReadWithSox(messages / left[0]));
}

}  // namespace
}  // namespace orven::testing
