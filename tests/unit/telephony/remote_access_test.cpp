// SPDX-License-Identifier: GPL-3.0-or-later
#include <gmock/gmock.h>

#include "support/world.h"

namespace orven::test {
namespace {

using testing::Contains;
using testing::ElementsAre;
using Played = TimedWave::Played;

class RemoteAccessTest : public testing::Test {
 protected:
  /// The owner calls and keys `keys` while the greeting plays.
  void CallAndKey(const std::string& keys) {
    world.Start();
    world.CallAndWaitForAnswer();
    world.Wave1.played.clear();
    world.Press(keys);
  }

  World world;
};

TEST_F(RemoteAccessTest, PlaysAllMessagesNewestFirstAndHangsUp) {
  world.AddMessage("old.wav", 3s);
  world.AddMessage("silent.wav", 0ms);
  world.AddCallWithoutMessage();
  world.AddMessage("new.wav", 2s);
  world.AddCallWithoutMessage();
  CallAndKey("4711*");
  EXPECT_TRUE(world.CurrentCall().admin_mode);
  EXPECT_EQ(world.views.Status(), "Administrator Mode");
  EXPECT_TRUE(world.Logged("Remote Control [LineIndex:0]"));
  EXPECT_THAT(world.Wave1.played, ElementsAre(Played{world.messages + "new.wav", 1000}));
  world.RunFor(4s);
  EXPECT_TRUE(world.line->IsAnswered());
  world.RunFor(1500ms);
  EXPECT_THAT(world.Wave1.played, ElementsAre(Played{world.messages + "new.wav", 1000},
                                              Played{world.messages + "silent.wav", 1000},
                                              Played{world.messages + "old.wav", 1000}));
  EXPECT_FALSE(world.line->HasCall());
  EXPECT_EQ(world.database.Records().size(), 5U) << "the owner's call is not filed";
  EXPECT_THAT(world.views.effects, ElementsAre("sound:/home/orven/beep.wav")) << "and announces nothing";
}

TEST_F(RemoteAccessTest, AWrongEntryIsClearedByTheStar) {
  world.AddMessage("one.wav", 1s);
  CallAndKey("471");
  EXPECT_EQ(world.views.Status(), "Monitoring Digits: 471");
  world.Press("*");
  EXPECT_EQ(world.views.Status(), "Monitoring Digits: ");
  world.Press("94711*");
  EXPECT_FALSE(world.CurrentCall().admin_mode) << "longer than the password";
  world.Press("4711*");
  EXPECT_TRUE(world.CurrentCall().admin_mode);
  world.RunFor(500ms);
  world.Press("*");
  EXPECT_EQ(world.Wave1.played.size(), 2U) << "the star alone starts again: the entry still stands";
}

TEST_F(RemoteAccessTest, DigitsAreIgnoredWhileAMessageIsRecorded) {
  world.Start();
  world.CallAndWaitForRecording();
  world.Press("4711*");
  EXPECT_FALSE(world.CurrentCall().admin_mode);
  EXPECT_EQ(world.CurrentCall().digit_buffer, "");
  EXPECT_TRUE(world.Logged("MonitorDigit[LineIndex:0]->4")) << "but they are logged";
}

TEST_F(RemoteAccessTest, AListWithNothingToHearDropsTheLine) {
  CallAndKey("4711*");
  world.RunFor(100ms);
  EXPECT_FALSE(world.line->HasCall()) << "empty list";

  world.AddCallWithoutMessage();
  world.AddCallWithoutMessage();
  world.Machine().ListView1.makeList();
  world.CallAndWaitForAnswer();
  world.Press("4711*");
  world.RunFor(100ms);
  EXPECT_FALSE(world.line->HasCall()) << "no messages";
  EXPECT_EQ(world.Machine().ListView1.Selected(), 2);
  EXPECT_THAT(world.Wave1.played.size(), 1U) << "only the second call's greeting";
}

TEST_F(RemoteAccessTest, AMessageThatCannotBePlayedEndsTheCall) {
  world.AddMessage("lost.wav", 1s);
  world.files.Delete(world.messages + "lost.wav");
  CallAndKey("4711*");
  world.RunFor(100ms);
  EXPECT_TRUE(world.Logged("Error Playing Remote Control wave error 4"));
  EXPECT_FALSE(world.line->HasCall());
}

TEST_F(RemoteAccessTest, RecordsThatVanishOrFailEndTheCall) {
  world.AddMessage("one.wav", 1s);
  world.AddMessage("two.wav", 1s);
  for (const char* first_keys : {"4711", "4711*"}) {
    CallAndKey(first_keys);
    world.database.gone = true;
    world.Press("*");
    world.RunFor(2s);
    EXPECT_FALSE(world.line->HasCall()) << first_keys;
    world.database.gone = false;
  }
  CallAndKey("4711*");
  world.database.Records().clear();
  world.Machine().ListView1.makeList();
  world.RunFor(2s);
  EXPECT_FALSE(world.line->HasCall());
}

TEST_F(RemoteAccessTest, WhatWasRecordedBeforeThePasswordIsNamed) {
  for (const char* longest : {"0", "1"}) {  // with the second the password comes before the recording
    world.registry.Set("MaxRec", longest);
    CallAndKey(*longest == '1' ? "4711*" : "");
    world.RunFor(5s);
    world.Press("4711*");
    world.RunFor(1s);
  }
  EXPECT_THAT(world.SystemLog(),
              Contains("Remote Control [LineIndex:0]->the message that was recorded before, " +
                       world.Wave1.last_recorded_path + ", is kept without a call record")
                  .Times(1));
}

}  // namespace
}  // namespace orven::test
