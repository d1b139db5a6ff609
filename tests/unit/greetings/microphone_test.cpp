// SPDX-License-Identifier: GPL-3.0-or-later
#include "unit/greetings/creator_fixture.h"

namespace orven::test {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

TEST_F(Creator, TakeFromTheMicrophoneIsRecordedPlayedAndSaved) {
  world.Machine().settings.Sound = 4;
  Load();
  view.text = "typed before";
  world.loud = 700;
  EXPECT_THAT(world.LoggedBy([this] { creator->Record(); }),
              ElementsAre("Start RecMessage[Device:4 1, 1, 16, 8000]->OK"));
  EXPECT_EQ(world.Wave1.recorded.back(), (WaveFormat{1, 1, 16, 8000}));
  EXPECT_EQ(world.Wave1.record_folder, World::kHome);
  EXPECT_EQ(view.text, "");
  EXPECT_EQ(view.buttons, (CreatorButtons{.cmdRec = false, .cmdStopRec = true, .cmdPlay = false}));
  std::vector<bool> labels;
  for (int second = 0; second < 3; ++second, world.RunFor(1s)) labels.push_back(view.label);
  EXPECT_THAT(labels, ElementsAre(true, false, true)) << "it blinks";
  EXPECT_EQ(view.seconds, 3);
  EXPECT_EQ(view.level, 700);

  creator->StopRecord();
  EXPECT_TRUE(world.files.Exists(speaker_file));
  EXPECT_EQ(view.level, 0);
  EXPECT_EQ(view.buttons, (CreatorButtons{.cmdPlay = true}));
  EXPECT_EQ(world.take_waveforms.path, speaker_file);
  world.take_waveforms.done({{0.5F, 1.0F}, 3s});
  EXPECT_EQ(view.peaks, 2U);

  creator->Play();
  EXPECT_EQ(world.WavePlay.played.back(), (TimedWave::Played{speaker_file, 4}));
  EXPECT_TRUE(world.Logged("Start Play:OK"));
  EXPECT_TRUE(view.buttons.cmdStopPlay && !view.buttons.cmdPlay && !view.buttons.cmdRec);
  world.RunFor(1050ms);
  EXPECT_EQ(view.position, 1000ms);
  world.RunFor(5s);
  EXPECT_EQ(view.buttons, (CreatorButtons{.cmdPlay = true})) << "it has ended";
  creator->Play();
  creator->StopPlay();
  EXPECT_FALSE(world.WavePlay.IsPlaying());

  view.name = "  On holiday ";
  const auto sound = world.files.Content(speaker_file);
  creator->Save();
  world.RunFor(1ms);
  EXPECT_EQ(world.files.Content(InGreets("On holiday.wav")), sound);
  EXPECT_EQ(world.registry.Text("Greeting"), "On holiday");
  EXPECT_EQ(world.shared.greeting_file, "On holiday.wav");
  EXPECT_THAT(world.views.greetings, ElementsAre("Hello", "On holiday"));
  EXPECT_EQ(world.views.selected_greeting, "On holiday");
  EXPECT_THAT(saved, ElementsAre("On holiday"));
  EXPECT_FALSE(world.files.Exists(speaker_file));
  EXPECT_TRUE(view.closed);
}

TEST_F(Creator, FailuresOfRecorderAndPlayerAreLogged) {
  Load();
  world.Wave1.start_result = kWaveNoDevice;
  EXPECT_THAT(world.LoggedBy([this] { creator->Record(); }),
              ElementsAre("Error Start RecMessage[Device:0 1, 1, 16, 8000]->wave error 1"));
  EXPECT_EQ(view.buttons, CreatorButtons{});
  world.Wave1.start_result = kWaveOk;
  world.Wave1.stop_result = kWaveDiskFull;
  creator->Record();
  EXPECT_THAT(world.LoggedBy([this] { creator->StopRecord(); }),
              ElementsAre("ErrStopRecGreet 9 wave error 9"));
  view.name = "Lost";
  creator->Save();
  EXPECT_THAT(world.dialogs.informations, ElementsAre("Empty Message")) << "no older take passes for it";

  world.Wave1.stop_result = kWaveOk;
  RecordFor(0ms);
  creator->Save();
  EXPECT_THAT(world.dialogs.informations, SizeIs(2)) << "a file without sound is no greeting";
  RecordFor(1s);
  world.WavePlay.play_result = kWaveFileNotFound;
  EXPECT_THAT(world.LoggedBy([this] { creator->Play(); }),
              ElementsAre("Error Start Play[Device:0]->/home/orven/Greets/spktmp.wav wave error 4"));
  world.WavePlay.play_result = kWaveOk;
  world.WavePlay.PlayFile(InGreets("Hello.wav"), 0);
  EXPECT_THAT(world.LoggedBy([this] { creator->Play(); }), IsEmpty()) << "the player is busy";
}

TEST_F(Creator, AnsweredCallEndsTheTakeAndIsRecordedWhole) {
  Load();
  creator->Record();
  world.line->Offer();
  world.RunFor(1s);
  world.line->HangUp();
  world.RunFor(1s);
  EXPECT_TRUE(world.Wave1.IsRecording()) << "a call that nobody answered";
  EXPECT_EQ(world.database.RecordCount(), 1);
  EXPECT_FALSE(world.Logged("Record Message OK"));

  world.CallAndWaitForAnswer();
  EXPECT_FALSE(world.Wave1.IsRecording());
  EXPECT_TRUE(world.files.Exists(speaker_file));
  EXPECT_THAT(view.state, HasSubstr("A call was answered"));
  EXPECT_EQ(view.buttons, (CreatorButtons{.cmdPlay = true}));
  creator->Record();
  EXPECT_FALSE(world.Wave1.IsRecording()) << "the caller's message may begin at any moment";
  world.time.RunUntil([this] { return world.Wave1.IsRecording(); }, 60s);
  world.Talk();
  EXPECT_EQ(world.Wave1.record_folder, world.messages);
  creator->StopRecord();
  view.name = "Between";
  creator->Save();
  creator->Unload();
  EXPECT_TRUE(world.Wave1.IsRecording()) << "the caller's recording";
  world.RunFor(5s);
  world.HangUp();
  EXPECT_EQ(world.Wave1.last_recorded_path, world.messages + world.CurrentCall().message_file_name);
}

TEST_F(Creator, CancelAndExitKeepWhatWasRecorded) {
  Load();
  creator->Record();
  world.RunFor(2s);
  creator->Unload();
  EXPECT_FALSE(world.Wave1.IsRecording());
  EXPECT_TRUE(world.files.Exists(speaker_file));
  EXPECT_THAT(world.files.Names(std::string(World::kHome) + "/Greets/"), ElementsAre("Hello.wav"));

  Open();
  Load();
  creator->Record();
  world.window->Exit();
  EXPECT_TRUE(world.ended);
  EXPECT_EQ(world.Wave1.takes, 2);
  EXPECT_EQ(world.Wave1.written, 0);
  EXPECT_THAT(world.files.Names(world.messages), IsEmpty());
}

}  // namespace
}  // namespace orven::test
