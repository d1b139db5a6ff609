// SPDX-License-Identifier: GPL-3.0-or-later
#include <gmock/gmock.h>

#include "notify/caller_notice.h"
#include "support/world.h"

namespace orven::test {
namespace {

using testing::ElementsAre;

struct CallNoticesTest : testing::Test, World {
  CallNoticesTest() { Start().RunFor(1s); }  // until the beep has ended

  /// A complete call: the caller leaves a message of 2 s, or hangs up while it rings.
  void Call(const std::string& name, const std::string& number, bool message) {
    line->Offer();
    line->CallerId(name, number);
    for (int ring = 0; message && ring < 2; ++ring) line->Ring();
    if (message) time.RunUntil([this] { return Wave1.IsRecording(); }, 60s);
    if (message) RunFor(2s);
    HangUp();
  }
  std::vector<std::string> ShownBy(const std::function<void()>& action) {
    notifications.history.clear();
    action();
    return notifications.history;
  }

  CallList& list = Machine().ListView1;
};

TEST_F(CallNoticesTest, SayWhoCalledUnlessSwitchedOffOrSeen) {
  const auto anna = [this] { Call("Anna <b>", "555", true); };
  const auto nobody = [this] { Call(kUnknownCaller, kUnknownCaller, false); };
  EXPECT_THAT(ShownBy(anna), ElementsAre("New message from Anna <b>|555, at 14:05:08, 2 seconds|Play|Open"));
  EXPECT_THAT(ShownBy(nobody), ElementsAre("Missed call|At 14:05:12|Open"));
  EXPECT_THAT(ShownBy([this] { Call(kUnknownCaller, "555", false); }),
              ElementsAre("Missed call from 555|At 14:05:12|Open"));
  EXPECT_EQ(std::pair(notifications.shown.size(), notifications.unread), std::pair(std::size_t(3), 3));
  EXPECT_THAT(ShownBy([this] { line->Offer(), Machine().control.DropInComeCall(), RunFor(5s); }),
              ElementsAre());
  registry.Set("NotifyMessage", "0");
  EXPECT_THAT(ShownBy(anna), ElementsAre());
  EXPECT_THAT(ShownBy(nobody), testing::SizeIs(1));
  registry.Set("NotifyMissed", "0");
  EXPECT_THAT(ShownBy(nobody), ElementsAre());
  registry.Set("NotifyMissed", "1");
  views.in_front = true;
  EXPECT_THAT(ShownBy(nobody), ElementsAre());
  Machine().settings.ListMessageOnly = 1;
  views.in_front = false;
  EXPECT_THAT(ShownBy(nobody), ElementsAre()) << "there is nothing to open";
}

TEST_F(CallNoticesTest, PlayAndOpenActOnTheirCallWhateverHasHappenedSince) {
  Call("Anna", "1", true);
  Call("Ben", "2", true);
  Call("Carl", "3", false);
  const auto shown = notifications.shown;
  const auto press = [&](Notifications::Id id, std::size_t button) {
    notifications.shown.erase(id);
    shown.at(id).buttons.at(button).press();
  };
  EXPECT_FALSE(window->Unload());
  press(1, 0);
  EXPECT_EQ(WavePlay.played.back().first, messages + "12-31-2003_14-05-08.wav");
  EXPECT_EQ(std::tuple(list.Selected(), list.Row(3).icon, notifications.unread, views.shown),
            std::tuple(3, kReadMessage, 2, false));
  press(3, 0);
  EXPECT_EQ(std::pair(list.Selected(), views.shown), std::pair(1, true));
  Machine().calls.MarkAsReadUnRead(2, true);
  EXPECT_FALSE(notifications.shown.contains(2)) << "heard in the list";
  database.Remove(database.Identity(2));
  const auto played = WavePlay.played;
  press(2, 0);  // the button of a notification that the desktop still showed
  press(2, 1);
  EXPECT_EQ(std::pair(WavePlay.played, list.Count()), std::pair(played, 2));
}

TEST_F(CallNoticesTest, DeletedCallsAndAFloodLeaveFewAndACallThatCannotBeFiledIsTold) {
  for (int call = 0; call < 15; ++call) Call("Anna", "1", false);
  EXPECT_EQ(notifications.shown.size(), CallNotices::kMost);
  Machine().calls.ClearUpTo(list.Identity(1));
  EXPECT_EQ(notifications.shown.size(), 0U);
  database_full = true;
  EXPECT_THAT(ShownBy([this] { Call("Ben", "2", true); }), testing::SizeIs(1));
  notifications.Press(0);
  EXPECT_TRUE(views.shown);
}

TEST_F(CallNoticesTest, ACallerNoticeStandsInForTheWindowAndGoesWithTheCall) {
  struct Clicks : CallerViewClicks {
    std::string done;
    void AnswerNow() override { done += "answer "; }
    void Drop() override { done += "drop "; }
    void DoNothing() override {}
    void Close() override {}
  } clicks;
  CallerNotice notice(notifications);
  notice.SetClicks(&clicks);
  orven::Call call;
  EXPECT_THAT(ShownBy([&] { notice.Load(), notice.ShowCall(call); }),
              testing::Each("Incoming call||Answer Now|Drop Call"));
  call.caller_name = "Anna", call.caller_number = "555";
  EXPECT_THAT(ShownBy([&] { notice.ShowCall(call); }),
              ElementsAre("Call from Anna|555|Answer Now|Drop Call"));
  notifications.Press(0);
  EXPECT_THAT(ShownBy([&] { notice.ShowCommands(CallerCommands::WithoutAnswer); }),
              ElementsAre("Call from Anna|555|Drop Call"));
  EXPECT_EQ(notifications.shown.size(), 1U);
  notifications.Press(0);
  notice.ShowCall(call);
  notice.ShowCommands(CallerCommands::None);
  EXPECT_THAT(ShownBy([&] { notice.ShowCall(call); }), ElementsAre());
  EXPECT_EQ(std::pair(notifications.shown.size(), clicks.done),
            std::pair(std::size_t(0), std::string("answer drop ")));
}

}  // namespace
}  // namespace orven::test
