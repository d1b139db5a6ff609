// SPDX-License-Identifier: GPL-3.0-or-later
#include <gmock/gmock.h>

#include <algorithm>
#include <utility>

#include "base/runtime_error.h"
#include "records/call.h"
#include "support/world.h"

namespace orven::test {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::Not;

constexpr const char* kStartPcm = "Start Record Message[LineIndex:1000] Format:, 1, 1, 16, 8000->";

TEST(Recorder, SilenceEndsTheCallAndOneLoudTickResetsTheCount) {
  World world;
  world.Start();
  world.CallAndWaitForRecording();
  world.loud = 20;  // exactly the threshold: still silence
  world.RunFor(2900ms);
  world.loud = 21;
  world.RunFor(10ms);
  world.loud = 20;
  world.RunFor(2990ms);
  EXPECT_TRUE(world.Wave1.IsRecording());
  world.RunFor(10ms);
  EXPECT_FALSE(world.Wave1.IsRecording());
  world.RunFor(100ms);
  EXPECT_FALSE(world.line->HasCall()) << "silence ends the call, not only the recording";
  EXPECT_EQ(world.database.Field(0, kType), "5.91");
}

TEST(Recorder, TheLongestMessageEndsTheRecordingButNotTheCallWhichTheLineLetsGo) {
  World world;
  world.registry.Set("cDropSilence", "0");
  world.Start();
  world.CallAndWaitForRecording();
  world.RunFor(59s + 999ms);
  EXPECT_TRUE(world.Wave1.IsRecording());
  world.RunFor(1ms);
  EXPECT_FALSE(world.Wave1.IsRecording());
  world.RunFor(118s);
  EXPECT_TRUE(world.line->IsAnswered());
  EXPECT_THAT(world.LoggedBy([&] { world.RunFor(3s); }),
              ElementsAre("[Sim] Nothing was played, recorded or keyed for 120 s: the line ends the call",
                          "Disconnected[LineIndex:0]", "LineDrop[LineIndex:0]->Proc Num: Success",
                          "Proc[LineIndex:0]->2 2", "Proc[LineIndex:0]->2 Success.", "Idle[LineIndex:0]"));
  EXPECT_EQ(world.database.Field(0, kType), "60");
  EXPECT_EQ(std::ranges::count(world.SystemLog(), "Record Message OK"), 1);
}

TEST(Recorder, ZeroLimitsEndAtTheFirstTick) {
  World world;
  world.registry.Set("SecSilence", "0");
  world.Start();
  world.CallAndWaitForRecording();
  world.RunFor(100ms);
  EXPECT_EQ(world.Wave1.last_recorded_length, 10ms);

  World other;
  other.registry.Set("MaxRec", "0");
  other.Start();
  other.CallAndWaitForRecording();
  other.Talk();
  other.RunFor(2s);
  EXPECT_EQ(other.Wave1.last_recorded_length, 1s);
}

TEST(Recorder, AFailedStartIsLoggedTwiceAndSilenceStillHangsUp) {
  World world;
  world.Wave1.start_result = kWaveNoDevice;
  world.Start();
  world.CallAndWaitForAnswer();
  world.RunFor(3s);
  EXPECT_EQ(std::ranges::count(world.SystemLog(), std::string(kStartPcm) + "wave error 1"), 2);
  EXPECT_TRUE(world.line->IsAnswered());
  world.RunFor(3s);
  EXPECT_FALSE(world.line->HasCall());
  EXPECT_EQ(world.database.Field(0, kType), "-1");
  EXPECT_THAT(world.SystemLog(), Not(Contains("Record Message OK")));
}

TEST(Recorder, ADeviceWithoutTheFormatDropsTheCall) {
  World world;
  world.Wave1.query_result = kWaveBadFormat;
  world.Start();
  world.CallAndWaitForAnswer();
  world.RunFor(4s);
  EXPECT_TRUE(world.Logged("Cap Error Rec Message[LineIndex:1000] Format:, 1, 1, 16, 8000->wave error 3"));
  EXPECT_FALSE(world.line->HasCall());
  EXPECT_FALSE(world.Machine().recorder.TimersRunning());
}

TEST(Recorder, CompressedMessagesAndPreScreen) {
  World world;
  world.registry.Set("CompressMessages", "-1");
  world.registry.Set("PreScreen", "1");
  world.registry.Set("Sound", "3");
  world.Wave1.query_result = kWaveBadFormat;  // is not asked for mu-law
  world.Wave1.monitor_result = kWaveNoDevice;
  world.Start();
  world.CallAndWaitForRecording();
  EXPECT_THAT(world.Wave1.recorded, ElementsAre(WaveFormat{kWaveFormatMuLaw, 1, 8, 8000}));
  EXPECT_THAT(world.Wave1.monitored, ElementsAre(3));
  EXPECT_TRUE(world.Logged("Start Record Message[LineIndex:1000] Format:, 7, 1, 8, 8000->OK"));
  EXPECT_TRUE(world.Logged("PreScreen->wave error 1"));
  EXPECT_TRUE(world.Wave1.to_disk);
  EXPECT_EQ(world.Wave1.record_folder, world.messages);
}

TEST(Recorder, AFailedWriteFilesACallWithoutAMessage) {
  World world;
  world.Start();
  world.files.before_write = [](const std::string& path) {
    if (path.ends_with(".wav")) throw RuntimeError(ErrorNumber::DiskFull);
  };
  world.CallAndWaitForRecording();
  world.RunFor(1s);
  world.HangUp();
  EXPECT_TRUE(world.Logged("Record Message wave error 9"));
  EXPECT_TRUE(world.CurrentCall().message_left);
  EXPECT_EQ(world.database.Field(0, kType), "-1");
  EXPECT_EQ(world.database.Field(0, kCallMassageName), "12-31-2003_14-05-07.wav");
}

TEST(Recorder, CallsOfOneSecondHaveAMessageEach) {
  for (const auto result : {kWaveOk, kWaveDiskFull}) {
    World world;
    const std::string name = "12-31-2003_14-05-07";
    world.files.Put(world.messages + name + ".wav", TimedWave::Sound(7s));
    world.Wave1.stop_result = result;
    world.Start();
    world.CallAndWaitForRecording();
    world.RunFor(1s);
    world.HangUp();
    EXPECT_EQ(world.files.Content(world.messages + name + ".wav"), TimedWave::Sound(7s));
    const auto own_name = name + ".kept_12-31-2003_14-05-11.wav";
    EXPECT_TRUE(world.Logged("Record Message: two calls share the name " + name +
                             ".wav, the newer message becomes " + own_name));
    EXPECT_EQ(world.database.Field(0, kCallMassageName), own_name);
    EXPECT_EQ(world.database.Field(0, kType), result == kWaveOk ? "1" : "-1");
    EXPECT_EQ(world.files.Content(world.messages + own_name), result == kWaveOk ? TimedWave::Sound(1s) : "");
  }
}

TEST(Recorder, AFolderWithoutItsSeparatorLeavesTheNameAsItIs) {
  World world;
  world.registry.Set("MassagesPath", "/mnt/my");
  world.registry.Set("cDropSilence", "0");
  world.Start();
  world.CallAndWaitForRecording();
  world.RunFor(2s);
  EXPECT_EQ(world.Wave1.record_folder, "/mnt/") << "a start after a crash looks there";
  world.HangUp();
  const auto name = world.database.Field(0, kCallMassageName);
  EXPECT_EQ(name, "12-31-2003_14-05-07.wav");
  EXPECT_EQ(world.files.Content("/mnt/my" + name), TimedWave::Sound(2s));
}

TEST(Recorder, AMessageFollowsTheFolderThatWasChangedBeforeItWasFiled) {
  World world;
  world.registry.Set("MaxRec", "0");
  world.Start();
  world.CallAndWaitForRecording();
  world.RunFor(2s);
  ASSERT_FALSE(world.Wave1.IsRecording());
  world.files.Put("/mnt/new/12-31-2003_14-05-07.wav", TimedWave::Sound(7s));
  world.Machine().move.Begin("/mnt/new/");
  world.HangUp();
  EXPECT_EQ(world.database.Field(0, kType), "1");
  EXPECT_EQ(world.files.Content("/mnt/new/" + world.database.Field(0, kCallMassageName)),
            TimedWave::Sound(1s));
}

}  // namespace
}  // namespace orven::test
