// SPDX-License-Identifier: GPL-3.0-or-later
#include <gmock/gmock.h>

#include "support/world.h"

namespace orven::test {
namespace {

using testing::Contains;
using testing::ElementsAre;

class RemoteAccessTest : public testing::Test, public World {
 protected:
  /// The owner calls and keys `keys` while the greeting plays.
  void CallAndKey(const std::string& keys) {
    if (!window->Machine().line.LineOn()) Start();
    CallAndWaitForAnswer();
    Wave1.played.clear();
    Press(keys);
  }
};

TEST_F(RemoteAccessTest, PlaysAllMessagesNewestFirstAndHangsUp) {
  AddMessage("old.wav", 3s);
  AddMessage("silent.wav", 0ms);
  AddCallWithoutMessage();
  AddMessage("new.wav", 2s);
  AddCallWithoutMessage();
  CallAndKey("4711*");
  EXPECT_EQ(views.Status(), "Administrator Mode");
  EXPECT_TRUE(Logged("Remote Control [LineIndex:0]"));
  RunFor(4s);
  EXPECT_TRUE(line->IsAnswered());
  RunFor(1500ms);
  using Played = TimedWave::Played;
  EXPECT_THAT(Wave1.played,
              ElementsAre(Played{messages + "new.wav", 1000}, Played{messages + "silent.wav", 1000},
                          Played{messages + "old.wav", 1000}));
  EXPECT_FALSE(line->HasCall());
  EXPECT_THAT(views.effects, ElementsAre("sound:/home/orven/beep.wav"))
      << "the owner's call announces nothing";
}

TEST_F(RemoteAccessTest, AWrongEntryIsClearedByTheStar) {
  AddMessage("one.wav", 1s);
  CallAndKey("471");
  EXPECT_EQ(views.Status(), "Monitoring Digits: 471");
  Press("*");
  EXPECT_EQ(views.Status(), "Monitoring Digits: ");
  Press("94711*");
  EXPECT_FALSE(CurrentCall().admin_mode) << "longer than the password";
  Press("4711*");
  EXPECT_TRUE(CurrentCall().admin_mode);
  RunFor(500ms);
  Press("*");
  EXPECT_EQ(Wave1.played.size(), 2U) << "the star alone starts again: the entry still stands";
}

TEST_F(RemoteAccessTest, DigitsAreIgnoredWhileAMessageIsRecorded) {
  Start();
  CallAndWaitForRecording();
  Press("4711*");
  EXPECT_FALSE(CurrentCall().admin_mode);
  EXPECT_EQ(CurrentCall().digit_buffer, "");
  EXPECT_TRUE(Logged("MonitorDigit[LineIndex:0]->4")) << "but they are logged";
}

TEST_F(RemoteAccessTest, WhereNothingCanBeHeardTheCallEnds) {
  const std::pair<const char*, std::function<void()>> cases[] = {
      {"empty list", [] {}},
      {"no messages", [&] { AddCallWithoutMessage(), AddCallWithoutMessage(); }},
      {"its file is gone", [&] { AddMessage("lost.wav", 1s), files.Delete(messages + "lost.wav"); }},
      {"the records fail", [&] { database.gone = true; }}};
  Start();
  for (const auto& [what, make] : cases) {
    CallAndKey("4711");
    make();
    Press("*");
    RunFor(2s);
    EXPECT_FALSE(line->HasCall()) << what;
    EXPECT_EQ(Wave1.played.size(), 0U) << what;
  }
  EXPECT_TRUE(Logged("Error Playing Remote Control wave error 4"));
}

TEST_F(RemoteAccessTest, RecordsThatFailWhileOneIsHeardEndTheCall) {
  for (const char* name : {"one.wav", "two.wav"}) AddMessage(name, 1s);
  CallAndKey("4711*");
  database.gone = true;
  RunFor(2s);
  EXPECT_FALSE(line->HasCall());
}

TEST_F(RemoteAccessTest, WhatWasRecordedBeforeThePasswordIsNamed) {
  registry.Set("MaxRec", "0");
  CallAndKey("");
  RunFor(5s);
  Press("4711*4711*");
  EXPECT_THAT(SystemLog(), Contains("Remote Control [LineIndex:0]->the message that was recorded before, " +
                                    Wave1.last_recorded_path + ", is kept without a call record")
                               .Times(1));
}

}  // namespace
}  // namespace orven::test
