// SPDX-License-Identifier: GPL-3.0-or-later
#include <gmock/gmock.h>

#include "support/world.h"

namespace orven::test {
namespace {

using testing::ElementsAre;

class CallerViewTest : public testing::Test {
 protected:
  void Show(std::int16_t speed, bool animate = true, bool auto_close = false) {
    window.tops.clear();
    view.ViewCallViewer(animate, speed, auto_close, 10);
  }
  void Start(std::initializer_list<const char*> on) {
    for (const char* setting : on) world.registry.Set(setting, "1");
    world.Start();
  }
  void Ring() {
    world.line->Offer();
    world.line->Ring();
    world.RunFor(10ms);
  }

  World world;
  RecordingCallerView& window = world.views.caller_view;
  SlidingCallerView& view = world.Machine().caller_view;
};

TEST_F(CallerViewTest, SlidesDownSnapsTheLastStretchAndSlidesUp) {
  Show(950);  // 1000 twips a tick, of a height of 2850
  EXPECT_TRUE(window.open);
  world.RunFor(200ms);
  EXPECT_THAT(window.tops, ElementsAre(-2850, -1850, -850, 0));
  window.tops.clear();
  view.Close();
  world.RunFor(200ms);
  EXPECT_THAT(window.tops, ElementsAre(-1000, -2000, -3000));
  EXPECT_FALSE(window.open);

  Show(0);
  world.RunFor(1s);
  // 50 twips a tick; after 2750 only 100 of the height are left.
  ASSERT_EQ(window.tops.size(), 56U);
  EXPECT_EQ(window.tops[54], -150);
  EXPECT_EQ(window.tops[55], 0);
}

TEST_F(CallerViewTest, ReversesWhileItSlides) {
  Show(450);
  world.RunFor(25ms);
  EXPECT_EQ(window.top, -1850);
  view.Close();
  Show(450);
  EXPECT_THAT(window.tops, testing::IsEmpty()) << "an open view is not opened again";
  world.RunFor(100ms);
  EXPECT_EQ(window.top, -2850);
  EXPECT_FALSE(view.IsOpen());
}

TEST_F(CallerViewTest, WithoutAnimationOpensAtOnceAndClosesOnAClickOrOneTickAfterTheLimit) {
  Show(50, false);
  EXPECT_THAT(window.tops, ElementsAre(-2850, 0));
  world.RunFor(3600s);
  EXPECT_TRUE(window.open);
  view.DoNothing();
  EXPECT_FALSE(window.open);
  Show(50, false, true);
  world.RunFor(10500ms);
  EXPECT_TRUE(window.open);
  world.RunFor(1s);
  EXPECT_FALSE(window.open);
}

TEST_F(CallerViewTest, ClicksActOnTheRingingCall) {
  world.registry.Set("NumOfRing", "4");
  Start({"ViewDetails"});
  Ring();
  ASSERT_TRUE(view.IsOpen());
  EXPECT_EQ(window.commands, CallerCommands::All);
  view.AnswerNow();
  EXPECT_FALSE(view.IsOpen());
  world.RunFor(100ms);
  EXPECT_TRUE(world.line->IsAnswered());
  world.HangUp();

  Ring();
  view.Drop();
  world.RunFor(1s);
  EXPECT_FALSE(world.line->HasCall());

  Ring();
  EXPECT_THAT(world.LoggedBy([&] { view.DoNothing(); }), ElementsAre("DoNothing[LineIndex:0]"));
  EXPECT_FALSE(view.IsOpen());
  for (int ring = 1; ring < 4; ++ring) world.line->Ring();
  world.RunFor(100ms);
  EXPECT_TRUE(world.line->IsAnswered()) << "the call rings on, and the machine answers it";
  world.HangUp();
}

TEST_F(CallerViewTest, AnOpenViewLosesItsCommandsWithTheCallAndGetsThemBackWithTheNext) {
  Start({"ViewDetails"});
  Ring();
  world.HangUp();
  EXPECT_TRUE(view.IsOpen());
  EXPECT_EQ(window.commands, CallerCommands::None);
  Ring();
  EXPECT_EQ(window.commands, CallerCommands::All);
  world.CallAndWaitForAnswer();
  world.RunFor(100ms);
  EXPECT_EQ(window.commands, CallerCommands::WithoutAnswer);
  world.Press("4711*");
  world.HangUp();
  EXPECT_EQ(window.commands, CallerCommands::None) << "also after the owner's own call";
  world.window->Exit();
  EXPECT_FALSE(window.open);
}

TEST_F(CallerViewTest, AClosingViewDoesNotHideTheNextAnnouncement) {
  Start({"ViewDetails", "WhenMsgViewMsg", "cAnimation"});
  Ring();
  world.RunFor(2s);
  view.Drop();
  EXPECT_TRUE(view.IsClosing());
  world.RunFor(1s);
  EXPECT_TRUE(view.IsOpen()) << "the call's end";
  EXPECT_EQ(window.top, 0);
  EXPECT_TRUE(world.views.Had("view:Call ended"));
  view.Close();
  Ring();
  EXPECT_TRUE(view.IsOpen() && !view.IsClosing());
  EXPECT_EQ(window.commands, CallerCommands::All);
}

TEST_F(CallerViewTest, AfterACallItOpensOnlyWhenTheSettingSaysSo) {
  for (const bool wanted : {false, true}) {
    World other;
    other.registry.Set("WhenMsgViewMsg", wanted ? "1" : "0");
    other.Start().CallAndWaitForRecording();
    other.Talk();
    other.RunFor(2s);
    EXPECT_FALSE(other.views.caller_view.open);
    other.HangUp();
    EXPECT_EQ(other.views.caller_view.open, wanted);
    EXPECT_EQ(other.views.Had("view:New Message"), wanted);
    EXPECT_EQ(other.views.caller_view.path, wanted ? other.CurrentCall().message_path : "");
  }
}

}  // namespace
}  // namespace orven::test
