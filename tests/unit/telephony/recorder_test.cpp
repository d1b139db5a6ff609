// SPDX-License-Identifier: GPL-3.0-or-later
#include <gmock/gmock.h>

#include "support/world.h"

namespace orven::test {
namespace {

using testing::ElementsAre;

const std::string kStem = "12-31-2003_14-05-07";

class RecorderTest : public testing::Test, public World {
 protected:
  /// Starts with this setting, takes a call and records for `length`.
  void RecordWith(const char* name, const char* value, std::chrono::milliseconds length) {
    registry.Set(name, value);
    Start();
    CallAndWaitForRecording();
    RunFor(length);
  }
};

TEST_F(RecorderTest, SilenceEndsTheCallAndOneLoudTickResetsTheCount) {
  Wave1.SetLevel(20);  // exactly the threshold, which counts as silence
  RecordWith("SecSilence", "3", 2900ms);
  Wave1.SetLevel(21);
  RunFor(10ms);
  Wave1.SetLevel(20);
  RunFor(2990ms);
  EXPECT_TRUE(Wave1.IsRecording());
  RunFor(10ms);
  EXPECT_FALSE(Wave1.IsRecording());
  RunFor(100ms);
  EXPECT_FALSE(line->HasCall()) << "silence ends the call, not only the recording";
  EXPECT_EQ(database.Field(0, kType), "5.91");
}

TEST_F(RecorderTest, TheLongestMessageEndsTheRecordingButNotTheCall) {
  RecordWith("cDropSilence", "0", 59s + 999ms);
  EXPECT_TRUE(Wave1.IsRecording());
  RunFor(1ms);
  EXPECT_FALSE(Wave1.IsRecording());
  RunFor(5s);
  EXPECT_TRUE(line->IsAnswered() && !Machine().recorder.TimersRunning());
}

TEST_F(RecorderTest, AZeroLimitEndsAtTheFirstTick) {
  RecordWith("SecSilence", "0", 100ms);
  EXPECT_EQ(Wave1.last_recorded_length, 10ms);
  Crash();
  Talk();
  RecordWith("MaxRec", "0", 2s);
  EXPECT_EQ(Wave1.last_recorded_length, 1s);
}

TEST_F(RecorderTest, AFailedStartIsLoggedTwiceAndACallThatCannotBeRecordedEnds) {
  const std::string format = "[LineIndex:1000] Format:, 1, 1, 16, 8000->wave error ";
  Start();
  for (const bool starts : {false, true}) {
    (starts ? Wave1.query_result : Wave1.start_result) = kWaveBadFormat;
    CallAndWaitForAnswer();
    RunFor(6s);
    EXPECT_FALSE(line->HasCall() || Machine().recorder.TimersRunning());
  }
  EXPECT_THAT(SystemLog(), testing::Contains("Start Record Message" + format + "3").Times(2));
  EXPECT_TRUE(Logged("Cap Error Rec Message" + format + "3"));
}

TEST_F(RecorderTest, CompressedMessagesAndPreScreen) {
  registry.Set("PreScreen", "1");
  registry.Set("Sound", "3");
  Wave1.query_result = kWaveBadFormat;  // has no effect: mu-law is recorded without a query
  Wave1.monitor_result = kWaveNoDevice;
  RecordWith("CompressMessages", "-1", 0s);
  EXPECT_THAT(Wave1.recorded, ElementsAre(WaveFormat{kWaveFormatMuLaw, 1, 8, 8000}));
  EXPECT_THAT(Wave1.monitored, ElementsAre(3));
  EXPECT_TRUE(Logged("Start Record Message[LineIndex:1000] Format:, 7, 1, 8, 8000->OK"));
  EXPECT_TRUE(Logged("PreScreen->wave error 1"));
  EXPECT_TRUE(Wave1.to_disk);
  EXPECT_EQ(Wave1.record_folder, messages);
}

TEST_F(RecorderTest, AMessageThatCannotBeWrittenAndWhoseNameIsTakenIsFiledUnderAnotherName) {
  const auto kept = kStem + ".kept_12-31-2003_14-05-11.wav";
  files.Put(messages + kStem + ".wav", "older");
  Wave1.stop_result = kWaveDiskFull;
  RecordWith("MaxRec", "1", 1s);
  HangUp();
  EXPECT_TRUE(Logged("Record Message: two calls share the name " + kStem +
                     ".wav, the newer message becomes " + kept));
  EXPECT_EQ(database.Field(0, kType) + database.Field(0, kCallMassageName), "-1" + kept);
  EXPECT_EQ(files.Content(messages + kStem + ".wav"), "older");
}

TEST_F(RecorderTest, AFolderWithoutItsSeparatorLeavesTheNameAsItIs) {
  registry.Set("MassagesPath", "/mnt/my");
  RecordWith("cDropSilence", "0", 2s);
  EXPECT_EQ(Wave1.record_folder, "/mnt/") << "a start after a crash searches that folder";
  HangUp();
  EXPECT_EQ(database.Field(0, kCallMassageName), kStem + ".wav");
  EXPECT_EQ(files.Content("/mnt/my" + kStem + ".wav"), TimedWave::Sound(2s));
}

}  // namespace
}  // namespace orven::test
