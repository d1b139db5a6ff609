// SPDX-License-Identifier: GPL-3.0-or-later
#include <gmock/gmock.h>

#include "support/world.h"

namespace orven::test {
namespace {

using testing::ElementsAre;

class CallerViewTest : public testing::Test, public World {
 protected:
  void Show(std::int16_t speed, bool animate = true, bool auto_close = false) {
    shown.tops.clear();
    view.ViewCallViewer(animate, speed, auto_close, 10);
  }
  void StartWith(std::initializer_list<const char*> on) {
    for (const char* setting : on) registry.Set(setting, "1");
    Start();
  }
  void Ring() {
    line->Offer();
    line->Ring();
    RunFor(10ms);
  }

  RecordingCallerView& shown = views.caller_view;
  SlidingCallerView& view = Machine().caller_view;
};

TEST_F(CallerViewTest, SlidesDownSnapsTheLastStretchAndSlidesUp) {
  Show(950);  // 1000 twips a tick, of a height of 2850
  RunFor(200ms);
  EXPECT_TRUE(shown.open);
  EXPECT_THAT(shown.tops, ElementsAre(-2850, -1850, -850, 0));
  shown.tops.clear();
  view.Close();
  RunFor(200ms);
  EXPECT_THAT(shown.tops, ElementsAre(-1000, -2000, -3000));
  EXPECT_FALSE(shown.open);
  Show(0);
  RunFor(1s);
  // 50 twips a tick; after 2750 only 100 of the height are left.
  ASSERT_EQ(shown.tops.size(), 56U);
  EXPECT_EQ(shown.tops[54], -150);
  EXPECT_EQ(shown.tops[55], 0);
}

TEST_F(CallerViewTest, ReversesWhileItSlides) {
  Show(450);
  RunFor(25ms);
  EXPECT_EQ(shown.top, -1850);
  view.Close();
  Show(450);
  EXPECT_THAT(shown.tops, testing::IsEmpty()) << "an open view is not opened again";
  RunFor(100ms);
  EXPECT_EQ(shown.top, -2850);
  EXPECT_FALSE(view.IsOpen());
}

TEST_F(CallerViewTest, WithoutAnimationOpensAtOnceAndClosesOnAClickOrOneTickAfterTheLimit) {
  Show(50, false);
  EXPECT_THAT(shown.tops, ElementsAre(-2850, 0));
  RunFor(3600s);
  EXPECT_TRUE(shown.open);
  view.DoNothing();
  EXPECT_FALSE(shown.open);
  Show(50, false, true);
  RunFor(10500ms);
  EXPECT_TRUE(shown.open);
  RunFor(1s);
  EXPECT_FALSE(shown.open);
}

TEST_F(CallerViewTest, ClicksActOnTheRingingCall) {
  registry.Set("NumOfRing", "4");
  StartWith({"ViewDetails"});
  Ring();
  view.AnswerNow();
  EXPECT_FALSE(view.IsOpen());
  RunFor(100ms);
  EXPECT_TRUE(line->IsAnswered());
  HangUp();
  Ring();
  view.Drop();
  RunFor(1s);
  EXPECT_FALSE(line->HasCall());
  Ring();
  EXPECT_THAT(LoggedBy([&] { view.DoNothing(); }), ElementsAre("DoNothing[LineIndex:0]"));
  EXPECT_FALSE(view.IsOpen());
  for (int ring = 1; ring < 4; ++ring) line->Ring();
  RunFor(100ms);
  EXPECT_TRUE(line->IsAnswered()) << "the call rings on, and the machine answers it";
}

TEST_F(CallerViewTest, AnOpenViewOffersWhatTheCallAllows) {
  StartWith({"ViewDetails"});
  Ring();
  HangUp();
  EXPECT_EQ(shown.commands, CallerCommands::None);
  CallAndWaitForAnswer();
  RunFor(100ms);
  EXPECT_EQ(shown.commands, CallerCommands::WithoutAnswer);
  Press("4711*");
  HangUp();
  EXPECT_EQ(shown.commands, CallerCommands::None) << "also after the owner's own call";
  Ring();
  EXPECT_EQ(shown.commands, CallerCommands::All);
  window->Exit();
  EXPECT_FALSE(shown.open);
}

TEST_F(CallerViewTest, AClosingViewDoesNotHideTheNextAnnouncement) {
  StartWith({"ViewDetails", "WhenMsgViewMsg", "cAnimation"});
  Ring();
  RunFor(2s);
  view.Drop();
  EXPECT_TRUE(view.IsClosing());
  RunFor(1s);
  EXPECT_TRUE(view.IsOpen() && views.Had("view:Call ended"));
  EXPECT_EQ(shown.top, 0);
  view.Close();
  Ring();
  EXPECT_TRUE(view.IsOpen() && !view.IsClosing());
}

TEST_F(CallerViewTest, AfterACallItOpensWhenTheSettingSaysSo) {
  StartWith({"WhenMsgViewMsg"});
  CallAndWaitForRecording();
  RunFor(2s);
  EXPECT_FALSE(shown.open);
  HangUp();
  EXPECT_TRUE(shown.open && views.Had("view:New Message"));
  EXPECT_EQ(shown.path, CurrentCall().message_path);
}

}  // namespace
}  // namespace orven::test
