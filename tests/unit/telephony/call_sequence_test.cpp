// SPDX-License-Identifier: GPL-3.0-or-later
#include <gmock/gmock.h>

#include "records/call.h"
#include "support/world.h"

namespace orven::test {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;

TEST(CallSequence, LogsEveryStepOfACallWithAMessage) {
  World world;
  world.Start();
  const auto lines = world.LoggedBy([&] {
    world.line->Offer();
    world.line->CallerId("Anna", "5551234");
    world.line->Ring();
    world.RunFor(1s);
    world.line->Ring();
    world.RunFor(1s);
    world.time.RunUntil([&] { return world.Wave1.IsRecording(); }, 60s);
    world.Talk();
    world.RunFor(5s);
    world.HangUp();
  });
  EXPECT_THAT(lines, ElementsAre("InCommingCall[LineIndex:0]", "CallerID[LineIndex:0]->Anna-5551234",
                                 "Ring[LineIndex:0]->1", "Ring[LineIndex:0]->2",
                                 "LineAnswer[LineIndex:0]->Proc Num: 1", "Proc[LineIndex:0]->1 1",
                                 "Proc[LineIndex:0]->1 Success.", "Connected[LineIndex:0]", "Play Beep OK",
                                 "Start Record Message[LineIndex:1000] Format:, 1, 1, 16, 8000->OK",
                                 "Disconnected[LineIndex:0]", "Record Message OK", "Close PreScreenOK",
                                 "LineDrop[LineIndex:0]->Proc Num: Success", "Proc[LineIndex:0]->2 2",
                                 "Proc[LineIndex:0]->2 Success.", "Idle[LineIndex:0]"));
  EXPECT_THAT(world.database.Records(), ElementsAre(ElementsAre("Anna", "5551234", "14:05:07", "12/31/2003",
                                                                "12-31-2003_14-05-07.wav", "5", "0")));
  EXPECT_EQ(world.CallsLog().back(), "Ring:2 [Anna:5551234]");
  EXPECT_EQ(world.files.Content(world.messages + "12-31-2003_14-05-07.wav"), TimedWave::Sound(5s));
  EXPECT_EQ(world.views.Status(), "Monitoring Sim");
  EXPECT_FALSE(world.Machine().recorder.TimersRunning());
}

TEST(CallSequence, ACallerWhoGivesUpIsFiledWithoutAName) {
  World world;
  world.Start();
  world.line->Offer();
  world.line->Ring();
  world.RunFor(1s);
  world.HangUp();
  ASSERT_EQ(world.database.Records().size(), 1U);
  EXPECT_EQ(world.database.Field(0, kCallName), "UNKNOWN");
  EXPECT_EQ(world.database.Field(0, kCallNumber), "UNKNOWN");
  EXPECT_EQ(world.database.Field(0, kType), "-1");
  EXPECT_EQ(world.database.Field(0, kCallMassageName), "12-31-2003_14-05-07.wav");
  EXPECT_EQ(world.CallsLog().back(), "Ring: [UNKNOWN:UNKNOWN]");
}

TEST(CallSequence, ListMessageOnlyFilesOnlyCallsWithAMessage) {
  World world;
  world.registry.Set("ListMessageOnly", "1");
  world.registry.Set("cPlayInIdle", "1");
  world.registry.Set("cOnlyIfGotMessage", "1");
  world.registry.Set("pMailTo", "1");
  world.registry.Set("pAppTo", "1");
  world.Start();
  world.CallAndWaitForAnswer();
  world.HangUp();
  EXPECT_THAT(world.database.Records(), IsEmpty());
  EXPECT_FALSE(world.views.Had("sound:/home/orven/Sound/idle.wav"));
  EXPECT_FALSE(world.views.Had("action:Mail"));

  world.CallAndWaitForRecording();
  world.HangUp();
  EXPECT_EQ(world.database.Records().size(), 1U);
  EXPECT_THAT(world.views.effects,
              ElementsAre("sound:/home/orven/beep.wav", "sound:/home/orven/Sound/idle.wav", "action:Mail",
                          "action:App"));
}

TEST(CallSequence, AnnouncesTheCallInOrder) {
  World world;
  for (const char* flag : {"cPlayInRing", "cPlayInIdle", "ViewDetails", "ActionsMailAllCalls", "pAppTo"}) {
    world.registry.Set(flag, "1");
  }
  world.Start();
  world.views.effects.clear();
  world.window->Unload();  // the window goes into the tray
  world.line->Offer();
  world.line->Ring();
  world.RunFor(1s);
  world.line->CallerId("Anna", "1");
  world.RunFor(1s);
  EXPECT_EQ(world.views.caller_view.name, "Anna");
  world.views.on_effect = [&](const std::string& effect) {
    if (effect != "action:App") return;
    EXPECT_EQ(world.database.Records().size(), 1U) << "filed before the actions";
  };
  world.HangUp();
  EXPECT_THAT(world.views.effects, ElementsAre("sound:/home/orven/Sound/ring.wav", "view", "view:New Call",
                                               "view:", "view:Ring : 1", "sound:/home/orven/Sound/idle.wav",
                                               "view:no commands", "view:Call ended", "action:App"));
  EXPECT_TRUE(world.Machine().tray.Blinking());
}

TEST(CallSequence, EventsWithoutACallDoNothing) {
  World world;
  world.Start();
  auto& sequence = world.Machine().sequence;
  const auto lines = world.LoggedBy([&] {
    sequence.Connected(0);
    sequence.Disconnected(0);
    sequence.Idle(0);
  });
  EXPECT_THAT(lines, IsEmpty());
  world.line->Offer();
  world.HangUp();
  EXPECT_THAT(world.LoggedBy([&] { sequence.Idle(0); }), IsEmpty()) << "a second Idle";
}

TEST(CallSequence, TheDropCommandRejectsARingingCallAndEndsAConnectedOne) {
  World world;
  world.Start();
  auto& control = world.Machine().control;
  EXPECT_THAT(world.LoggedBy([&] { control.DropInComeCall(); }),
              ElementsAre("DropChice[LineIndex:0]", "LineAnswer[LineIndex:0]->There is no call on the line.",
                          "LineDrop[LineIndex:0]->Proc Num: There is no call on the line."));
  world.line->Offer();
  world.line->Ring();
  world.RunFor(10ms);
  control.DropInComeCall();
  world.RunFor(1s);
  EXPECT_FALSE(world.line->HasCall());
  EXPECT_THAT(world.SystemLog(), Not(Contains("Connected[LineIndex:0]")));
  EXPECT_THAT(world.Wave1.played, IsEmpty()) << "no greeting for a rejected call";

  world.CallAndWaitForAnswer();
  EXPECT_THAT(world.LoggedBy([&] { control.DropInComeCall(); }),
              ElementsAre("DropChice[LineIndex:0]", "LineDrop[LineIndex:0]->Proc Num: Success"));
  EXPECT_FALSE(world.Wave1.IsPlaying()) << "hanging up ends the greeting";
  world.RunFor(1s);
  EXPECT_EQ(world.database.Records().size(), 2U);
}

TEST(CallSequence, ExitDuringACallFilesItWithItsMessage) {
  World world;
  world.registry.Set("ViewDetails", "1");
  world.Start();
  world.CallAndWaitForRecording();
  world.RunFor(3s - 500ms);
  world.window->Exit();
  EXPECT_TRUE(world.ended);
  EXPECT_EQ(world.database.Field(0, kType), "2.5");
  const auto log = world.SystemLog();
  EXPECT_EQ(log.back(), "Unload ORVEN");
  EXPECT_FALSE(world.views.caller_view.open) << "what the call's end opened is closed again";
  EXPECT_THAT(log, Contains("LineClose[LineIndex=0]->Success"));
  EXPECT_EQ(world.views.Status(), "Off Mode");
}

TEST(CallSequence, SettingsChangedInMidCallHoldForTheNextStep) {
  World world;
  world.Start();
  world.CallAndWaitForAnswer();
  world.Machine().quick_options.SetRings("5");
  world.Machine().quick_options.SetRecordMessage(false);
  world.RunFor(5s);
  EXPECT_FALSE(world.line->HasCall()) << "with recording off the beep ends the call";
  EXPECT_THAT(world.Wave1.recorded, IsEmpty());
  EXPECT_EQ(world.registry.Text("NumOfRing"), "5");
  EXPECT_EQ(world.registry.Text("RecordMessage"), "0");
}

}  // namespace
}  // namespace orven::test
