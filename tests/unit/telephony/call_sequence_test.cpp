// SPDX-License-Identifier: GPL-3.0-or-later
#include <gmock/gmock.h>

#include "support/world.h"

namespace orven::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class CallSequenceTest : public testing::Test, public World {};

TEST_F(CallSequenceTest, LogsEveryStepOfACallWithAMessage) {
  Start();
  const auto lines = LoggedBy([&] {
    line->Offer();
    line->CallerId("Anna", "5551234");
    for (int ring = 0; ring < 2; ++ring, RunFor(1s)) line->Ring();
    time.RunUntil([&] { return Wave1.IsRecording(); }, 60s);
    Talk();
    RunFor(5s);
    HangUp();
  });
  EXPECT_THAT(lines, ElementsAre("InCommingCall[LineIndex:0]", "CallerID[LineIndex:0]->Anna-5551234",
                                 "Ring[LineIndex:0]->1", "Ring[LineIndex:0]->2",
                                 "LineAnswer[LineIndex:0]->Proc Num: 1", "Proc[LineIndex:0]->1 1",
                                 "Proc[LineIndex:0]->1 Success.", "Connected[LineIndex:0]", "Play Beep OK",
                                 "Start Record Message[LineIndex:1000] Format:, 1, 1, 16, 8000->OK",
                                 "Disconnected[LineIndex:0]", "Record Message OK", "Close PreScreenOK",
                                 "LineDrop[LineIndex:0]->Proc Num: Success", "Proc[LineIndex:0]->2 2",
                                 "Proc[LineIndex:0]->2 Success.", "Idle[LineIndex:0]"));
  EXPECT_THAT(database.Records(), ElementsAre(ElementsAre("Anna", "5551234", "14:05:07", "12/31/2003",
                                                          "12-31-2003_14-05-07.wav", "5", "0")));
  EXPECT_EQ(CallsLog().back(), "Ring:2 [Anna:5551234]");
  EXPECT_EQ(files.Content(messages + "12-31-2003_14-05-07.wav"), TimedWave::Sound(5s));
  EXPECT_EQ(views.Status(), "Monitoring Sim");
}

TEST_F(CallSequenceTest, AnnouncesTheCallInOrderAndFilesItBeforeTheActions) {
  for (const char* flag : {"cPlayInRing", "cPlayInIdle", "ViewDetails", "ActionsMailAllCalls", "pAppTo"})
    registry.Set(flag, "1");
  Start();
  views.effects.clear();
  window->Unload();  // the window goes into the tray
  line->Offer();
  line->Ring();
  RunFor(1s);
  line->CallerId("Anna", "1");
  RunFor(1s);
  EXPECT_EQ(views.caller_view.name, "Anna");
  std::size_t filed = 0;
  views.on_effect = [&](const std::string& effect) {
    if (effect == "action:App") filed = database.Records().size();
  };
  HangUp();
  EXPECT_EQ(filed, 1U);
  EXPECT_THAT(views.effects, ElementsAre("sound:/home/orven/Sound/ring.wav", "view", "view:New Call",
                                         "view:", "view:Ring : 1", "sound:/home/orven/Sound/idle.wav",
                                         "view:no commands", "view:Call ended", "action:App"));
  EXPECT_TRUE(Machine().tray.Blinking());
  auto& sequence = Machine().sequence;
  EXPECT_THAT(LoggedBy([&] { sequence.Connected(0), sequence.Disconnected(0), sequence.Idle(0); }), IsEmpty())
      << "there is no call";
  views.effects.clear();
  Machine().settings.cOnlyIfGotMessage = 1;
  line->Offer();
  HangUp();
  EXPECT_FALSE(views.Had("sound:/home/orven/Sound/idle.wav"));
}

TEST_F(CallSequenceTest, OnlyTheAnswerThatFailedMakesWayForAnother) {
  Start();
  line->SetAnswerDelay(5s);
  line->Offer();
  for (int ring = 0; ring < 2; ++ring) line->Ring();
  RunFor(10ms);
  Machine().control.Proc(0, 7, kTelephonyDeviceFailed);  // of a call that is gone
  EXPECT_TRUE(CurrentCall().answering);
  EXPECT_EQ(Machine().progress.State(), CallState::Answering);
  Machine().control.Proc(0, 1, kTelephonyDeviceFailed);
  EXPECT_FALSE(CurrentCall().answering);
  EXPECT_EQ(Machine().progress.State(), CallState::Offered);
}

TEST_F(CallSequenceTest, TheDropCommandRejectsARingingCallAndEndsAConnectedOne) {
  Start();
  const auto drop = [&] { Machine().control.DropInComeCall(); };
  EXPECT_THAT(LoggedBy(drop),
              ElementsAre("DropChice[LineIndex:0]", "LineAnswer[LineIndex:0]->There is no call on the line.",
                          "LineDrop[LineIndex:0]->Proc Num: There is no call on the line."));
  line->Offer();
  line->Ring();
  RunFor(10ms);
  drop();
  RunFor(1s);
  EXPECT_FALSE(line->HasCall());
  EXPECT_THAT(Wave1.played, IsEmpty()) << "no greeting for a rejected call";
  CallAndWaitForAnswer();
  EXPECT_THAT(LoggedBy(drop),
              ElementsAre("DropChice[LineIndex:0]", "LineDrop[LineIndex:0]->Proc Num: Success"));
  EXPECT_FALSE(Wave1.IsPlaying()) << "hanging up ends the greeting";
}

TEST_F(CallSequenceTest, ExitDuringACallFilesItWithItsMessageAndClosesTheCallerView) {
  registry.Set("ViewDetails", "1");
  Start();
  CallAndWaitForRecording();
  RunFor(2500ms);
  window->Exit();
  EXPECT_EQ(database.Field(0, kType), "2.5");
  EXPECT_FALSE(views.caller_view.open);
}

TEST_F(CallSequenceTest, RecordingThatIsTurnedOffInMidCallEndsItAfterTheBeep) {
  Start();
  CallAndWaitForAnswer();
  Machine().quick_options.SetRecordMessage(false);
  RunFor(5s);
  EXPECT_FALSE(line->HasCall());
  EXPECT_THAT(Wave1.recorded, IsEmpty());
}

}  // namespace
}  // namespace orven::test
