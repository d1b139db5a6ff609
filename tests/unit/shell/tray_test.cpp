// SPDX-License-Identifier: GPL-3.0-or-later
#include <gmock/gmock.h>

#include "support/world.h"

namespace orven::test {
namespace {

using testing::Contains;
using testing::ElementsAre;
using enum NotifyIconPicture;

constexpr double kTwips = 15;
constexpr double kLeftUp = 514 * kTwips, kRightUp = 517 * kTwips;

TEST(Tray, TheTipShowsTheCounts) {
  World world;
  world.AddMessage("a.wav", 1s);
  world.Start();
  EXPECT_THAT(world.shell.requests, ElementsAre(NotifyRequest::Add, NotifyRequest::Modify));
  const auto& icon = world.shell.icon;
  EXPECT_EQ(icon.tip.size(), 64U);
  EXPECT_STREQ(icon.tip.c_str(), "ORVEN - Calls:1  New:1");
  EXPECT_EQ(icon.window, 4711U);
  EXPECT_EQ(icon.icon, MainWindow);
  world.Machine().calls.MarkAsReadUnRead(1, true);
  EXPECT_STREQ(icon.tip.c_str(), "ORVEN - Calls:1  New:0");
}

TEST(Tray, BlinksUntilTheWindowIsBack) {
  World world;
  world.Start();
  EXPECT_FALSE(world.window->Unload());
  world.line->Offer();
  world.RunFor(10ms);
  world.HangUp();
  world.RunFor(500ms);
  EXPECT_EQ(world.shell.icon.icon, PicSysTryNothing);
  world.RunFor(500ms);
  EXPECT_EQ(world.shell.icon.icon, MainWindow);

  world.window->Open();
  EXPECT_TRUE(world.views.shown);
  EXPECT_FALSE(world.Machine().window_hidden);
  EXPECT_TRUE(world.Machine().tray.Blinking()) << "Open lets it blink on";
  world.RunFor(500ms);

  world.window->Hide();
  EXPECT_TRUE(world.views.minimised);
  EXPECT_FALSE(world.views.shown);
  world.window->TrayMouseMove(kRightUp, kTwips);
  world.window->TrayMouseMove(512 * kTwips, kTwips);
  EXPECT_EQ(world.views.tray_menus, 1);
  EXPECT_FALSE(world.views.shown);
  world.window->TrayMouseMove(kLeftUp, kTwips);
  EXPECT_TRUE(world.views.shown);
  EXPECT_FALSE(world.views.minimised);
  EXPECT_FALSE(world.Machine().tray.Blinking());
  EXPECT_EQ(world.shell.icon.icon, MainWindow);
}

TEST(Tray, WithoutANotificationAreaTheWindowIsOnlyMinimised) {
  World world;
  world.shell.notification_area = false;
  world.Start();
  EXPECT_FALSE(world.window->Unload());
  EXPECT_TRUE(world.views.shown);
  EXPECT_TRUE(world.views.minimised);
  EXPECT_TRUE(world.Machine().window_hidden) << "nobody looks at it";
  EXPECT_TRUE(world.Logged("No notification area: the window is minimised, not hidden"));
  world.window->CameBack();
  EXPECT_FALSE(world.Machine().window_hidden);
}

TEST(Tray, AHiddenStartWaitsForTheDesktopToShowItsNotificationArea) {
  for (const bool comes : {true, false}) {
    World world;
    world.shell.notification_area = false;
    world.window->LoadHidden();
    world.RunFor(15s);
    world.shell.notification_area = comes;
    world.RunFor(30s);
    EXPECT_EQ(world.views.minimised, !comes);
  }
}

TEST(Tray, AWindowWhoseIconIsGoneComesBackMinimised) {
  World world;
  world.Start();
  world.window->Unload();
  world.shell.notification_area = false;
  world.RunFor(15s);
  EXPECT_FALSE(world.views.minimised) << "the panel may be starting anew";
  world.RunFor(10s);
  EXPECT_TRUE(world.views.minimised);
  EXPECT_TRUE(world.Logged("No notification area: the window is minimised, not hidden"));
}

TEST(MainCommands, APageThatNothingOpensIsNamed) {
  World world;
  world.Start();
  world.shell.opens = false;
  world.window->Commands().ShowPage(kStartPage);
  EXPECT_THAT(world.dialogs.informations,
              Contains("Nothing on this computer opens /home/orven/Help/index.htm"));
}

TEST(MainCommands, WithoutADeviceTheButtonComesBackUp) {
  World world;
  world.registry.Set("Modem", "3");
  world.Start();
  world.views.line_on = true;  // as the pressed button shows
  world.window->Commands().Toolbar1_ButtonClick("OnOff", true);
  EXPECT_FALSE(world.views.line_on);
  EXPECT_EQ(world.views.Status(), "Off Mode");
}

TEST(GreetingCommands, WorkOnTheBareName) {
  World world;
  world.files.Put("/home/orven/Greets/Away", TimedWave::Sound(1s));
  world.files.Put("/home/orven/Greets/Away.wav", TimedWave::Sound(1s));
  world.Start();
  world.RunFor(1s);
  auto& commands = world.window->Commands();
  commands.TBQuickOption_ButtonClick("Play");
  EXPECT_EQ(world.views.effects.back(), "sound:/home/orven/Greets/Hello") << "no extension is added";
  EXPECT_EQ(world.views.Status(),
            "No file is called \"Hello\". Options, Answer Mode plays and deletes greetings");
  world.views.selected_greeting = "Away";
  commands.TBQuickOption_ButtonClick("Play");
  EXPECT_TRUE(world.WavePlay.IsPlaying());
  commands.TBQuickOption_ButtonClick("Stop");
  EXPECT_FALSE(world.WavePlay.IsPlaying());
  commands.TBQuickOption_ButtonClick("Delete");
  EXPECT_THAT(world.files.Names("/home/orven/Greets/"), ElementsAre("Away.wav", "Hello.wav"));
  EXPECT_THAT(world.views.greetings, ElementsAre("Away", "Hello"));
  EXPECT_EQ(world.views.selected_greeting, "Away");
  world.views.selected_greeting.clear();
  commands.TBQuickOption_ButtonClick("Delete");
  EXPECT_EQ(world.files.Names("/home/orven/Greets/").size(), 2U);
}

TEST(MainWindow, GridLinesAreRememberedAndTheClockGoes) {
  World world;
  world.Start();
  EXPECT_EQ(world.views.list_style, 0x21U);
  EXPECT_TRUE(world.views.quick_toolbar);
  world.views.grid_lines = false;
  world.window->ChangeGridLines();
  EXPECT_EQ(world.views.list_style, 0U);
  EXPECT_EQ(world.registry.Text("GridLines"), "0");
  EXPECT_EQ(world.views.clock_time, "14:05:07");
  EXPECT_EQ(world.views.clock_date, "12/31/2003");
  world.RunFor(2s);
  EXPECT_EQ(world.views.clock_time, "14:05:09");
}

}  // namespace
}  // namespace orven::test
