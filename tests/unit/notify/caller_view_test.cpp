// SPDX-License-Identifier: GPL-3.0-or-later
#include <gmock/gmock.h>

#include <sstream>

#include "support/world.h"

namespace orven::test {
namespace {

class CallerViewTest : public testing::Test, public World {
 protected:
  /// Plays a script such as "slide 200 close" (200 is milliseconds). Returns the view's positions and state.
  std::string Play(const std::string& script) {
    shown.tops.clear();
    std::istringstream words(script);
    for (std::string word; words >> word;) {
      if (word == "slide")
        view.ViewCallViewer(true, 950, false, 10);  // 1000 twips per tick; the height is 2850
      if (word == "slower") view.ViewCallViewer(true, 450, false, 10);
      if (word == "at-once") view.ViewCallViewer(false, 50, false, 10);
      if (word == "for-10s") view.ViewCallViewer(false, 50, true, 10);
      if (word == "close") view.Close();
      if (word == "click") view.DoNothing();
      RunFor(std::atoi(word.c_str()) * 1ms);
    }
    std::string tops;
    for (const auto top : shown.tops) tops += std::to_string(top) + " ";
    return tops + (shown.open ? "open" : "closed");
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
  CallerView& view = Machine().caller_view;
};

TEST_F(CallerViewTest, SlidesReversesOrOpensAtOnceAndClosesOnAClickOrOneTickAfterTheLimit) {
  const std::pair<const char*, const char*> scripts[] = {
      {"slide 200", "-2850 -1850 -850 0 open"},  // the last step ends at 0
      {"close 200", "-1000 -2000 -3000 closed"},
      {"slower 25", "-2850 -2350 -1850 open"},
      {"close slower", "open"},  // has no effect while the view is open
      {"100", "-2350 -2850 closed"},
      {"at-once 3600000", "-2850 0 open"},
      {"click", "closed"},
      {"for-10s 10500", "-2850 0 open"},
      {"1000", "closed"}};
  for (const auto& [script, played] : scripts) EXPECT_EQ(Play(script), played) << script;
  view.ViewCallViewer(true, 0, false, 10);  // 50 twips per tick; the last step covers the remaining 150
  RunFor(1s);
  EXPECT_TRUE(shown.tops.size() >= 56 && shown.tops.end()[-2] == -150 && shown.tops.back() == 0);
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
  EXPECT_EQ(Wave1.played.size(), 1U) << "no greeting for a rejected call";
  Ring();
  EXPECT_THAT(LoggedBy([&] { view.DoNothing(); }), testing::ElementsAre("DoNothing[LineIndex:0]"));
  EXPECT_FALSE(view.IsOpen());
  for (int ring = 1; ring < 4; ++ring) line->Ring();
  RunFor(100ms);
  EXPECT_TRUE(line->IsAnswered()) << "the call keeps ringing, and the machine answers it";
}

TEST_F(CallerViewTest, AnOpenViewOffersWhatTheCallAllows) {
  StartWith({"ViewDetails"});
  Ring();
  HangUp();
  EXPECT_EQ(shown.commands, CallerCommands::None);
  CallAndWaitForRecording();
  RunFor(2s);
  HangUp();
  EXPECT_TRUE(views.Had("view:New Message") && shown.path == CurrentCall().message_path);
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
  EXPECT_EQ(shown.tops.back(), 0);
  view.Close();
  Ring();
  EXPECT_TRUE(view.IsOpen() && !view.IsClosing());
}

}  // namespace
}  // namespace orven::test
