// SPDX-License-Identifier: GPL-3.0-or-later
#include <gmock/gmock.h>

#include "support/world.h"

namespace orven::test {
namespace {

using testing::ElementsAre;
using enum WindowFrame::Toolbar;

class MainWindowTest : public testing::Test, public World {
 protected:
  void Put(const std::string& greeting) { files.Put("/home/orven/Greets/" + greeting, TimedWave::Sound(1s)); }
};

TEST_F(MainWindowTest, LoadsThenStarts) {
  for (const char* name : {"Away.wav", "notes.txt"}) Put(name);
  database.open_note = "Calls was damaged";
  views.toolbar_styles = {{ToolBarPlayer, 0x801}, {TBQuickOption, 0x800}};
  Start();
  EXPECT_THAT(SystemLog(), ElementsAre("Load ORVEN", "LineInitialize->Success", "Calls was damaged",
                                       "SelectDevice->LineIndex: 0  Device Name: Sim",
                                       "LineOpen[LineIndex:0 Device Name:Sim]->Success"));
  EXPECT_EQ(registry.Text("Modem") + registry.Text("ModemName"), "0Sim") << "the first usable line";
  EXPECT_EQ(std::tuple(views.shown_rings, views.columns.size()), std::tuple(2, 6U));
  EXPECT_THAT(views.greetings, ElementsAre("Away", "Hello"));
  EXPECT_EQ(views.selected_greeting, "Hello");
  EXPECT_THAT(views.toolbar_styles,
              ElementsAre(testing::Pair(Toolbar1, 0x800U), testing::Pair(ToolBarPlayer, 1U),
                          testing::Pair(TBQuickOption, 0U)));
  EXPECT_TRUE(views.shown && views.shown_record && views.quick_toolbar && !views.slider_enabled);
  EXPECT_EQ(views.list_style, 0x21U);
  views.grid_lines = false;
  window->ChangeGridLines();
  EXPECT_EQ(views.list_style, 0U);
  EXPECT_EQ(registry.Text("GridLines"), "0");
  for (const auto& [seen, clock] : {std::pair(true, "14:05:09"), {false, "14:05:09"}, {true, "14:05:13"}}) {
    window->SightChanged(seen);
    RunFor(2s);
    EXPECT_EQ(views.clock, clock + std::string(" 12/31/2003"));
  }
}

TEST_F(MainWindowTest, ClosingOnlyHidesSaysSoOnceAndExitEnds) {
  Start();
  shell.notification_area = false;
  for (int close = 0; close < 2; ++close) {
    EXPECT_FALSE(window->Unload());
    RunFor(1s);
    EXPECT_THAT(dialogs.informations, ElementsAre(testing::HasSubstr("only minimised")));
    shell.notification_area = true;
  }
  EXPECT_TRUE(!views.shown && !ended && Tapi1->IsLineOpen(0));
  registry.Set("KeepAwake", "1");
  for (const bool on : {false, true}) {
    on ? window->TurnOn() : window->TurnOff();
    EXPECT_EQ(sleep.held, on);
  }
  Machine().tray.StartBlinking();
  for (int signal = 0; signal < 2; ++signal) window->Exit();
  RunFor(5s);
  EXPECT_TRUE(ended && views.others_closed && !Tapi1->IsLineOpen(0) && !sleep.held);
  EXPECT_EQ(std::ranges::count(SystemLog(), "Unload ORVEN"), 1);
  EXPECT_EQ(shell.icon.icon, NotifyIconPicture::PicSysTryNothing);
}

TEST_F(MainWindowTest, WithoutADeviceTheButtonComesBackUpAndAnExitDuringTheBoxEndsTheStart) {
  registry.Set("Modem", "3");
  registry.Set("ModemName", "Gone");
  Start();
  views.line_on = true;  // the button is pressed
  window->Commands().Toolbar1_ButtonClick("OnOff", true);
  EXPECT_TRUE(!views.line_on && views.Status() == "Off Mode");
  EXPECT_EQ(registry.Text("Modem"), "-1");
  const auto select_device = "Select Modem Device From Options/Devices [Modem Device]";
  EXPECT_THAT(dialogs.informations, ElementsAre(select_device, select_device));
  Crash();
  registry.Set("Modem", "3");
  views.shown = false;
  dialogs.while_open = [&] { window->Exit(); };
  Start();
  EXPECT_TRUE(window->Ended() && !views.shown);
}

TEST_F(MainWindowTest, LockedRecordsAreListedOnceTheyCanBeRead) {
  AddMessage("old.wav", 1s);
  database.gone = true;
  Start().RunFor(12s);
  EXPECT_TRUE(Tapi1->IsLineOpen(0) && views.rows.empty()) << "the line is open before the records are";
  database.gone = false;
  RunFor(60s);
  EXPECT_EQ(1U, views.rows.size());
  EXPECT_EQ(1, std::ranges::count(SystemLog(), "The call records can be read now"));
}

TEST_F(MainWindowTest, QuickOptionButtonsUseTheGreetingNameWithoutAnExtension) {
  for (const char* name : {"Away", "Away.wav"}) Put(name);
  Start().RunFor(1s);
  const auto press = [&](const char* key) { window->Commands().TBQuickOption_ButtonClick(key); };
  press("Play");
  EXPECT_EQ(views.effects.back(), "sound:/home/orven/Greets/Hello") << "no extension is added";
  EXPECT_EQ(views.Status(),
            "No file is called \"Hello\". To play or delete greetings, use Options, Answer Mode");
  views.selected_greeting = "Away";
  press("Play");
  EXPECT_TRUE(WavePlay.IsPlaying());
  press("Stop");
  EXPECT_FALSE(WavePlay.IsPlaying());
  press("Delete");
  EXPECT_EQ(views.selected_greeting, "Away");
  views.selected_greeting.clear();
  press("Delete");
  EXPECT_THAT(files.Names("/home/orven/Greets/"), ElementsAre("Away.wav", "Hello.wav"));
}

TEST_F(MainWindowTest, TheTrayIconCountsAndBlinksUntilTheWindowIsBack) {
  using enum NotifyIconPicture;
  const auto& icon = shell.icon;
  const auto move = [&](int message) { window->TrayMouseMove(message * 15.0, 15); };
  AddMessage("a.wav", 1s);
  Start();
  EXPECT_EQ(std::tuple(icon.tip.size(), icon.window, icon.icon), std::tuple(64U, 4711U, MainWindow));
  EXPECT_STREQ(icon.tip.c_str(), "ORVEN - Calls:1  New:1");
  window->Unload();
  line->Offer();
  RunFor(10ms);
  HangUp();
  for (const auto picture : {PicSysTryNothing, MainWindow}) {
    RunFor(500ms);
    EXPECT_EQ(icon.icon, picture);
  }
  window->Open();
  EXPECT_TRUE(views.shown && !Machine().window_hidden && Machine().tray.Blinking())
      << "Open does not stop the blinking";
  window->Hide();
  EXPECT_TRUE(views.minimised && !views.shown);
  for (const int message : {517, 512}) move(message);
  EXPECT_TRUE(views.tray_menus == 1 && !views.shown);
  move(514);
  EXPECT_TRUE(views.shown && !views.minimised && !Machine().tray.Blinking());
}

TEST(HiddenStart, IsMinimisedWhenTheNotificationAreaStaysAway) {
  for (const bool comes : {true, false}) {
    World hidden;
    hidden.shell.notification_area = false;
    hidden.window->LoadHidden();
    hidden.RunFor(15s);
    EXPECT_FALSE(hidden.views.minimised) << "the panel may still be starting";
    hidden.shell.notification_area = comes;
    hidden.RunFor(30s);
    EXPECT_EQ(hidden.views.minimised, !comes);
  }
}

class EntryRoutineTest : public MainWindowTest {
 protected:
  EntryRoutineTest() { registry = MemoryRegistry(); }
  bool Run(const std::string& command_line) {
    FirstStart first(registry, system, home,
                     {.random = [](std::uint32_t bound) { return 7 % bound; },
                      .announce_password = [this](const std::string& text) { told += text + " "; }});
    const auto prepare = [this](bool is_first) { told += is_first ? "first " : "later "; };
    return EntryRoutine(system, dialogs, first, prepare).Run(command_line, *window);
  }

  std::string told;
};

TEST_F(EntryRoutineTest, FirstStartWritesWhatEverySettingNeedsAndTheMachinesOwn) {
  system.version = {SystemVersion::Platform::WindowsNt, 5, 2};  // this version can animate windows
  EXPECT_TRUE(Run("") && Run(""));
  EXPECT_THAT(SystemLog(), testing::Not(testing::Contains(testing::StartsWith("Err"))));
  EXPECT_THAT(system.common_controls, testing::Each(std::pair(8U, 0x200U)));
  EXPECT_EQ(registry.Text("MassagesPath") + registry.Text("cAnimation") + registry.Text("Pass"),
            messages + "1777777");
  EXPECT_EQ(told, "first 777777 later ");
}

TEST_F(EntryRoutineTest, OnlyTheExactSwitchStartsHiddenAndAnUnstoredPasswordIsNotAnnounced) {
  registry.refuse_writes = true;
  for (const std::string command_line : {" -st", "-ST", "", "-st"}) {
    views.shown = false;
    Run(command_line);
    EXPECT_EQ(views.shown, command_line != "-st") << '"' << command_line << '"';
  }
  EXPECT_TRUE(Machine().window_hidden && Tapi1->IsLineOpen(0));
  EXPECT_THAT(told, testing::Not(testing::HasSubstr("7")));
}

}  // namespace
}  // namespace orven::test
