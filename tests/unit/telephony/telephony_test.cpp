// SPDX-License-Identifier: GPL-3.0-or-later
// The course of a call, remote access, and the line. The recorder has separate tests.
#include <gmock/gmock.h>

#include <algorithm>

#include "support/world.h"

namespace orven::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class TelephonyTest : public testing::Test, public World {
 protected:
  /// Calls as the owner and presses `keys` while the greeting plays.
  void CallAndKey(const std::string& keys) {
    if (!Machine().line.LineOn()) Start();
    CallAndWaitForAnswer();
    Wave1.played.clear();
    Press(keys);
  }
  /// Replaces the lines by simulated ones with these names. Returns the index of the open one, or -1.
  std::int32_t Replace(const std::vector<std::string>& names) {
    Machine().line.ReplaceDevices([&] {
      std::vector<TelephoneDevice> devices;
      for (const auto& name : names) devices.push_back({VoiceDevice(name), std::make_unique<TestLine>(time)});
      if (!devices.empty()) line = static_cast<TestLine*>(devices.front().driver.get());
      EXPECT_TRUE(Tapi1->Replace(std::move(devices))) << "a line is still open";
    });
    auto open = Tapi1->GetNumDevs() - 1;
    while (open >= 0 && !Tapi1->IsLineOpen(open)) --open;
    return open;
  }
};

TEST_F(TelephonyTest, LogsEveryStepOfACallWithAMessage) {
  Start();
  const auto lines = LoggedBy([&] {
    line->Offer();
    line->CallerId("Anna", "5551234");
    line->Divert("555\t9999", "no answer");
    for (int ring = 0; ring < 2; ++ring, RunFor(1s)) line->Ring();
    time.RunUntil([&] { return Wave1.IsRecording(); }, 60s);
    Talk();
    RunFor(5s);
    HangUp();
  });
  EXPECT_THAT(lines,
              ElementsAre("InCommingCall[LineIndex:0]", "CallerID[LineIndex:0]->Anna-5551234",
                          "Diverted[LineIndex:0]->555 9999 no answer", "Ring[LineIndex:0]->1",
                          "Ring[LineIndex:0]->2", "LineAnswer[LineIndex:0]->Proc Num: 1",
                          "Proc[LineIndex:0]->1 1", "Proc[LineIndex:0]->1 Success.", "Connected[LineIndex:0]",
                          "Play Beep OK", "Start Record Message[LineIndex:1000] Format:, 1, 1, 16, 8000->OK",
                          "Disconnected[LineIndex:0]", "Record Message OK", "Close PreScreenOK",
                          "LineDrop[LineIndex:0]->Proc Num: Success", "Proc[LineIndex:0]->2 2",
                          "Proc[LineIndex:0]->2 Success.", "Idle[LineIndex:0]"));
  EXPECT_THAT(database.Records(), ElementsAre(ElementsAre("Anna", "5551234", "14:05:07", "12/31/2003",
                                                          "12-31-2003_14-05-07.wav", "5", "0")));
}

TEST_F(TelephonyTest, AnnouncesTheCallInOrderAndFilesItBeforeTheActions) {
  for (const char* flag : {"cPlayInRing", "cPlayInIdle", "ViewDetails", "ActionsMailAllCalls", "pAppTo"})
    registry.Set(flag, "1");
  Start();
  views.effects.clear();
  window->Unload();  // hides the window in the tray
  line->Offer();
  line->Ring();
  RunFor(1s);
  line->CallerId("Anna", "1");
  RunFor(1s);
  EXPECT_EQ(views.caller_view.name + views.caller_view.when, "Anna12/31/200314:05:07");
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
  for (const auto kind : {LineEvent::Kind::Connected, LineEvent::Kind::Disconnected, LineEvent::Kind::Idle})
    EXPECT_THAT(LoggedBy([&] { Machine().sequence.Handle({.kind = kind, .line = 0}); }), IsEmpty())
        << "there is no call";
  views.effects.clear();
  Machine().settings.cOnlyIfGotMessage = 1;
  Machine().settings.PlayInRing = "";
  line->Offer();
  HangUp();
  EXPECT_FALSE(views.Had("sound:/home/orven/Sound/idle.wav") || views.Had("sound:/home/orven/Sound/"));
}

TEST_F(TelephonyTest, AfterAFailedAnswerTheNextRingAnswers) {
  Start();
  line->failing_answers = 1;
  CallAndWaitForAnswer();
  EXPECT_TRUE(line->IsAnswered());
}

TEST_F(TelephonyTest, TheDropCommandEndsAConnectedCall) {
  Start();
  const auto drop = [&] { Machine().control.DropInComeCall(); };
  EXPECT_THAT(LoggedBy(drop),
              ElementsAre("DropChice[LineIndex:0]", "LineAnswer[LineIndex:0]->There is no call on the line.",
                          "LineDrop[LineIndex:0]->Proc Num: There is no call on the line."));
  CallAndWaitForAnswer();
  EXPECT_THAT(LoggedBy(drop),
              ElementsAre("DropChice[LineIndex:0]", "LineDrop[LineIndex:0]->Proc Num: Success"));
  EXPECT_FALSE(Wave1.IsPlaying()) << "hanging up ends the greeting";
}

TEST_F(TelephonyTest, OnAFullDiskACallGoesOnAndEachFailureIsLoggedOnce) {
  Start();
  disk.spares = [](const std::string& path) { return path.ends_with(".txt"); };
  disk.FailAt(1);
  auto lines = LoggedBy([&] {
    CallAndWaitForRecording();
    HangUp();
    RunFor(30s);
  });
  EXPECT_EQ(std::ranges::count(lines, "Record Message wave error 9"), 1);
  std::erase_if(lines, [](const auto& text) { return !text.starts_with("Err"); });
  EXPECT_THAT(lines, ElementsAre("ErrKeepCall 61 Disk full: /home/orven/.call-1072879507000000",
                                 "ErrPutCallDetailsInDB 61 Disk full: /home/orven/Calls"));
}

TEST_F(TelephonyTest, TurningRecordingOffDuringACallEndsItAfterTheBeep) {
  Start();
  CallAndWaitForAnswer();
  Machine().quick_options.SetRecordMessage(false);
  RunFor(5s);
  EXPECT_FALSE(line->HasCall());
  EXPECT_THAT(Wave1.recorded, IsEmpty());
}

TEST_F(TelephonyTest, AWrongEntryIsClearedByTheStar) {
  AddMessage("one.wav", 1s);
  CallAndKey("471");
  EXPECT_EQ(views.Status(), "Monitoring Digits: 471");
  Press("*");
  EXPECT_EQ(views.Status(), "Monitoring Digits: ");
  Press("94711*");
  EXPECT_FALSE(CurrentCall().admin_mode) << "longer than the password";
  Press("4711*");
  EXPECT_TRUE(CurrentCall().admin_mode && Logged("Remote Control [LineIndex:0]"));
  EXPECT_EQ(views.Status(), "Administrator Mode");
  RunFor(500ms);
  Press("*");
  EXPECT_THAT(Wave1.played, testing::AllOf(testing::SizeIs(2),
                                           testing::Each(TimedWave::Played(messages + "one.wav", 1000))))
      << "the entry is kept, so the star alone starts again";
  RunFor(2s);
  EXPECT_FALSE(line->HasCall());
  EXPECT_THAT(views.effects, ElementsAre("sound:/home/orven/beep.wav"))
      << "the owner's call is not announced";
}

TEST_F(TelephonyTest, TheCallEndsWhenNothingCanBePlayed) {
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

TEST_F(TelephonyTest, AMessageRecordedBeforeThePasswordIsLogged) {
  registry.Set("MaxRec", "0");
  CallAndKey("");
  RunFor(5s);
  Press("4711*4711*");
  EXPECT_THAT(SystemLog(),
              testing::Contains("Remote Control [LineIndex:0]->the message that was recorded before, " +
                                Wave1.last_recorded_path + ", is kept without a call record")
                  .Times(1));
}

TEST_F(TelephonyTest, ADeviceThatCannotHearDigitsIsNotUsable) {
  std::vector<TelephoneDevice> devices;
  devices.push_back({VoiceDevice("Deaf"), std::make_unique<TestLine>(time)});
  devices[0].capabilities.monitor_digits = false;
  Tapi1->Replace(std::move(devices));
  Start();
  EXPECT_EQ(registry.Text("Modem") + registry.Text("ModemName"), "-2");
  EXPECT_FALSE(views.line_on);
}

TEST_F(TelephonyTest, AFailedOpenIsLoggedOnceAndTriedAgainUntilItSucceedsOrIsTurnedOff) {
  const std::string opens = "LineOpen[LineIndex:0 Device Name:Sim]->";
  const std::string taken = "Error " + opens + "The line is in use by another program. Port 5060 is taken.";
  line->failure = {kTelephonyLineInUse, "Port 5060 is taken.",
                   Words("Port %1 is taken: choose another one").Arg(5060)};
  Start();
  EXPECT_TRUE(Logged(taken));
  EXPECT_THAT(LoggedBy([&] { RunFor(64s); }), IsEmpty()) << "the same reason is logged once";
  EXPECT_EQ(line->openings, 7) << "again after 1, 3, 7, 15, 31 and 63 s";
  RunFor(600s);
  EXPECT_EQ(line->openings, 17) << "then each minute";
  EXPECT_EQ(views.Status(), "Port 5060 is taken: choose another one");
  EXPECT_TRUE(shell.icon.icon == NotifyIconPicture::LineTrouble && Machine().line.NeverOpened());
  EXPECT_THAT(LoggedBy([&] { window->TurnOn(); }), ElementsAre(taken)) << "a person turned the line on";
  window->TurnOff();
  line->failure.reset();
  EXPECT_THAT(LoggedBy([&] { RunFor(60s); }), IsEmpty()) << "it was turned off";
  EXPECT_EQ(views.Status(), "Off Mode");
  EXPECT_EQ(shell.icon.icon, NotifyIconPicture::LineOff);
  line->failure = {kTelephonyDeviceFailed, "No network."};
  window->TurnOn();
  line->failure.reset();
  EXPECT_THAT(LoggedBy([&] { RunFor(1s); }), ElementsAre(opens + "Success"));
  EXPECT_FALSE(Machine().line.NeverOpened());
  EXPECT_THAT(LoggedBy([&] { window->TurnOn(); }), IsEmpty()) << "the line is open already";
}

TEST_F(TelephonyTest, LastingTroubleIsNotifiedOnceAndItsEndToo) {
  Start();
  const auto& told = notifications.history;
  const auto has = [&](const char* trouble, std::chrono::milliseconds length) {
    line->Trouble(trouble);
    RunFor(length);
    return views.Status();
  };
  EXPECT_EQ(has("Silent: a", 29s), "Silent: a");
  EXPECT_EQ(shell.icon.icon, NotifyIconPicture::LineTrouble);
  EXPECT_EQ(has("", 1s), "Monitoring Sim");
  EXPECT_EQ(shell.icon.icon, NotifyIconPicture::MainWindow);
  EXPECT_THAT(told, IsEmpty()) << "it was soon over";
  has("Silent: b", 20s);
  has("Refused: c", 600s);
  EXPECT_THAT(told, ElementsAre("Trouble with the telephone line|Refused: c."));
  window->Unload();
  notifications.shown.rbegin()->second.click();
  EXPECT_TRUE(views.shown && !Machine().window_hidden);
  has("", 1s);
  EXPECT_EQ(told.back(), "The telephone line works again|Calls can come in.");
  EXPECT_EQ(notifications.shown.size(), 1U) << "one takes the other's place";
  has("Silent: d", 31s);
  window->TurnOff();
  EXPECT_TRUE(told.size() == 3 && notifications.shown.size() == 1) << "off is no trouble";
}

TEST_F(TelephonyTest, ACallAndItsLineStayTogetherWhenAnotherDeviceIsChosen) {
  Start();
  CallAndWaitForRecording();
  Machine().settings.Modem = 7;
  RunFor(4s);
  EXPECT_FALSE(line->HasCall()) << "silence hangs up the line that has the call";
  EXPECT_EQ(views.Status(), "Monitoring Sim");
  for (const std::int32_t of_line : {0, 1})
    Machine().sequence.Handle({.kind = LineEvent::Kind::Trouble,
                               .line = of_line,
                               .trouble = "No network " + std::to_string(of_line)});
  EXPECT_EQ(views.Status(), "No network 0") << "the other line's trouble is not shown";
  EXPECT_THAT(LoggedBy([&] { window->TurnOff(); }), ElementsAre("LineClose[LineIndex=0]->Success"));
  EXPECT_FALSE(Tapi1->IsLineOpen(0) || views.line_on);
  EXPECT_EQ(views.Status(), "Off Mode");
}

TEST_F(TelephonyTest, TheChosenLineIsUsedInPlaceOfTheOpenOneWhenTheCallIsOver) {
  Start();
  Replace({"Sim", "New"});
  auto& settings = Machine().settings;
  const auto choose = [&](std::int32_t index, const std::string& name) {
    settings.Modem = index;
    settings.ModemName = name;
    Machine().line.ShowLine();
    return views.offer;
  };
  EXPECT_EQ(choose(1, "New") + choose(0, "Sim") + choose(-1, "Gone") + choose(1, "New"), "NewNew");
  CallAndWaitForRecording();
  Machine().line.UseChosen();
  EXPECT_TRUE(Tapi1->IsLineOpen(0)) << "the call keeps its line";
  EXPECT_EQ(views.offer, "New waits");
  RunFor(4s);
  EXPECT_TRUE(Tapi1->IsLineOpen(1) && !Tapi1->IsLineOpen(0));
  EXPECT_EQ(views.Status() + views.offer, "Monitoring New");
}

TEST_F(TelephonyTest, AfterReplacingDevicesTheChosenOneOrTheFirstUsableIsOpened) {
  Start();
  EXPECT_EQ(Replace({"New", "Sim"}), 1);
  Machine().line.OpenLine(0);
  EXPECT_FALSE(Tapi1->IsLineOpen(0)) << "only one line at a time";
  EXPECT_EQ(Replace({"New"}), 0);
  EXPECT_EQ(registry.Text("ModemName"), "New");
  EXPECT_EQ(Replace({}), -1);
  EXPECT_EQ(Replace({"Again"}), 0) << "the first line that appears is opened";
  window->TurnOff();
  EXPECT_EQ(Replace({"Again"}), -1) << "a line that is off stays off";
}

}  // namespace
}  // namespace orven::test
