// SPDX-License-Identifier: GPL-3.0-or-later
#include <gmock/gmock.h>

#include "core/mdlWinVersion.h"
#include "support/world.h"

namespace orven::test {
namespace {

using testing::ElementsAre;
using testing::Pair;
using enum WindowFrame::Toolbar;

class MainWindowTest : public testing::Test {
 protected:
  void Put(const std::string& greeting) {
    world.files.Put("/home/orven/Greets/" + greeting, TimedWave::Sound(1s));
  }
  AnsweringMachine& Machine() { return world.Machine(); }

  World world;
  RecordingViews& views = world.views;
};

TEST_F(MainWindowTest, LoadsThenStarts) {
  for (const char* name : {"Away.wav", "notes.txt"}) Put(name);
  world.database.open_note = "Calls was damaged";
  views.toolbar_styles = {{ToolBarPlayer, 0x801}, {TBQuickOption, 0x800}};
  world.Start();
  EXPECT_THAT(world.SystemLog(), ElementsAre("Load ORVEN", "LineInitialize->Success", "Calls was damaged",
                                             "SelectDevice->LineIndex: 0  Device Name: Sim",
                                             "LineOpen[LineIndex:0 Device Name:Sim]->Success"));
  EXPECT_THAT(world.CallsLog(), ElementsAre("Load ORVEN"));
  EXPECT_EQ(std::pair(views.rings.size(), views.rings.back()), std::pair(std::size_t{20}, std::string("20")));
  EXPECT_EQ(views.shown_rings, 2);
  EXPECT_THAT(views.greetings, ElementsAre("Away", "Hello"));
  EXPECT_EQ(views.selected_greeting, "Hello");
  EXPECT_EQ(views.columns.size(), 6U);
  EXPECT_THAT(views.toolbar_styles,
              ElementsAre(Pair(Toolbar1, 0x800U), Pair(ToolBarPlayer, 1U), Pair(TBQuickOption, 0U)));
  EXPECT_TRUE(views.shown && views.shown_record && views.quick_toolbar && !views.slider_enabled);
  EXPECT_EQ(views.list_style, 0x21U);
  views.grid_lines = false;
  world.window->ChangeGridLines();
  EXPECT_EQ(views.list_style, 0U);
  EXPECT_EQ(world.registry.Text("GridLines"), "0");
  EXPECT_EQ(views.clock_time + ' ' + views.clock_date, "14:05:07 12/31/2003");
  world.RunFor(2s);
  EXPECT_EQ(views.clock_time, "14:05:09");
}

TEST_F(MainWindowTest, ClosingOnlyHidesAndExitEnds) {
  world.Start();
  EXPECT_FALSE(world.window->Unload());
  EXPECT_FALSE(views.shown || world.ended || world.Logged("Unload ORVEN"));
  EXPECT_TRUE(world.Tapi1->IsLineOpen(0));
  for (int signal = 0; signal < 2; ++signal) world.window->Exit();
  EXPECT_TRUE(world.ended && views.others_closed && !world.Tapi1->IsLineOpen(0));
  EXPECT_EQ(std::ranges::count(world.SystemLog(), "Unload ORVEN"), 1);
  EXPECT_EQ(world.CallsLog().back(), "Unload ORVEN");
  EXPECT_EQ(world.shell.icon.icon, NotifyIconPicture::PicSysTryNothing);
}

TEST_F(MainWindowTest, WithoutADeviceTheButtonComesBackUpAndAnExitDuringTheBoxEndsTheStart) {
  world.registry.Set("Modem", "3");
  world.Start();
  views.line_on = true;  // as the pressed button shows
  world.window->Commands().Toolbar1_ButtonClick("OnOff", true);
  EXPECT_FALSE(views.line_on);
  EXPECT_EQ(views.Status(), "Off Mode");
  world.Crash();
  world.registry.Set("Modem", "3");
  views.shown = false;
  world.dialogs.while_open = [&] { world.window->Exit(); };
  world.Start();
  EXPECT_TRUE(world.window->Ended() && !views.shown);
}

TEST_F(MainWindowTest, LockedRecordsAreListedOnceTheyCanBeRead) {
  world.AddMessage("old.wav", 1s);
  world.database.gone = true;
  world.Start().RunFor(12s);
  EXPECT_TRUE(world.Tapi1->IsLineOpen(0)) << "calls are answered meanwhile";
  EXPECT_EQ(0, Machine().ListView1.Total());
  world.database.gone = false;
  world.RunFor(60s);
  EXPECT_EQ(1, Machine().ListView1.Total());
  EXPECT_EQ(1U, views.rows.size());
  EXPECT_EQ(1, std::ranges::count(world.SystemLog(), "The call records can be read now"));
}

TEST_F(MainWindowTest, QuickOptionButtonsWorkOnTheBareGreetingName) {
  for (const char* name : {"Away", "Away.wav"}) Put(name);
  world.Start().RunFor(1s);
  const auto press = [&](const char* key) { world.window->Commands().TBQuickOption_ButtonClick(key); };
  press("Play");
  EXPECT_EQ(views.effects.back(), "sound:/home/orven/Greets/Hello") << "no extension is added";
  EXPECT_EQ(views.Status(), "No file is called \"Hello\". Options, Answer Mode plays and deletes greetings");
  views.selected_greeting = "Away";
  press("Play");
  EXPECT_TRUE(world.WavePlay.IsPlaying());
  press("Stop");
  EXPECT_FALSE(world.WavePlay.IsPlaying());
  press("Delete");
  EXPECT_EQ(views.selected_greeting, "Away");
  views.selected_greeting.clear();
  press("Delete");
  EXPECT_THAT(world.files.Names("/home/orven/Greets/"), ElementsAre("Away.wav", "Hello.wav"));
}

TEST_F(MainWindowTest, TheTrayIconCountsAndBlinksUntilTheWindowIsBack) {
  using enum NotifyIconPicture;
  constexpr double kTwips = 15;
  const auto& icon = world.shell.icon;
  const auto mouse = [&](int message) { world.window->TrayMouseMove(message * kTwips, kTwips); };
  world.AddMessage("a.wav", 1s);
  world.Start();
  EXPECT_THAT(world.shell.requests, ElementsAre(NotifyRequest::Add, NotifyRequest::Modify));
  EXPECT_EQ(std::tuple(icon.tip.size(), icon.window, icon.icon), std::tuple(64U, 4711U, MainWindow));
  EXPECT_STREQ(icon.tip.c_str(), "ORVEN - Calls:1  New:1");
  Machine().calls.MarkAsReadUnRead(1, true);
  EXPECT_STREQ(icon.tip.c_str(), "ORVEN - Calls:1  New:0");
  world.window->Unload();
  world.line->Offer();
  world.RunFor(10ms);
  world.HangUp();
  for (const auto picture : {PicSysTryNothing, MainWindow}) {
    world.RunFor(500ms);
    EXPECT_EQ(icon.icon, picture);
  }
  world.window->Open();
  EXPECT_TRUE(views.shown && !Machine().window_hidden);
  EXPECT_TRUE(Machine().tray.Blinking()) << "Open does not stop it";
  world.window->Hide();
  EXPECT_TRUE(views.minimised && !views.shown);
  for (const int message : {517, 512}) mouse(message);
  EXPECT_EQ(views.tray_menus, 1);
  EXPECT_FALSE(views.shown);
  mouse(514);
  EXPECT_TRUE(views.shown && !views.minimised && !Machine().tray.Blinking());
  EXPECT_EQ(icon.icon, MainWindow);
}

TEST_F(MainWindowTest, AHiddenWindowIsMinimisedWhenTheNotificationAreaStaysAway) {
  for (const bool comes : {true, false}) {
    World hidden;
    hidden.shell.notification_area = false;
    hidden.window->LoadHidden();
    hidden.RunFor(15s);
    EXPECT_FALSE(hidden.views.minimised) << "the panel may still be starting";
    hidden.shell.notification_area = comes;
    hidden.RunFor(30s);
    EXPECT_EQ(hidden.views.minimised, !comes);
    EXPECT_EQ(hidden.Logged("No notification area: the window is minimised, not hidden"), !comes);
  }
}

class EntryRoutineTest : public MainWindowTest {
 protected:
  bool Run(const std::string& command_line) {
    FirstStart first(registry, world.system, shared,
                     {.defaults =
                          [] {
                            return std::vector{RegString("NumOfRing", "4"), RegString("Pass", "default")};
                          },
                      .random = [](std::uint32_t bound) { return 7 % bound; },
                      .announce_password = [this](const std::string& text) { announced += text; }});
    const auto prepare = [this](bool is_first) { prepared += is_first ? "first " : "later "; };
    return EntryRoutine(world.system, world.dialogs, first, shared, prepare).Run(command_line, *world.window);
  }

  MemoryRegistry registry;
  SharedOptions shared{
      .application_version = "", .application_folder = "/app", .messages_path = "", .greeting_file = ""};
  std::string announced, prepared;
};

TEST_F(EntryRoutineTest, FirstStartWritesDefaultsAndTheMachinesOwnSettings) {
  world.system.version = {SystemVersion::Platform::WindowsNt, 5, 2};  // it can animate windows
  EXPECT_TRUE(Run(""));
  EXPECT_EQ(shared.application_version, "1.0.0.22");
  EXPECT_THAT(world.system.common_controls, ElementsAre(std::pair(8U, 0x200U)));
  const std::pair<const char*, const char*> stored[] = {
      {"NumOfRing", "4"}, {"MassagesPath", "/app/Messages/"}, {"cAnimation", "1"}, {"Pass", "777777"}};
  for (const auto& [name, value] : stored) EXPECT_EQ(registry.Text(name), value);
  EXPECT_EQ(registry.Text("ORVEN", kAutostartKey), "/app/ORVEN.exe -st");
  registry.Set("Pass", "mine");
  EXPECT_TRUE(Run(""));
  EXPECT_EQ(registry.Text("Pass"), "mine");
  EXPECT_EQ(announced + ' ' + prepared, "777777 first later ");
}

TEST_F(EntryRoutineTest, OnlyTheExactSwitchStartsHiddenAndAnUnstoredPasswordIsNotAnnounced) {
  registry.refuse_writes = true;
  for (const std::string command_line : {" -st", "-ST", "-st ", "", "-st"}) {
    views.shown = false;
    Run(command_line);
    EXPECT_EQ(views.shown, command_line != "-st") << '"' << command_line << '"';
  }
  EXPECT_TRUE(Machine().window_hidden && world.Tapi1->IsLineOpen(0));
  EXPECT_EQ(announced, "");
}

TEST_F(EntryRoutineTest, ASecondInstanceTouchesNothing) {
  world.system.instance_free = false;
  EXPECT_FALSE(Run(""));
  EXPECT_THAT(world.dialogs.messages, ElementsAre("ORVEN is still running"));
  world.window->Exit();  // a signal while the box is open
  EXPECT_TRUE(world.ended && prepared.empty() && world.SystemLog().empty());
  EXPECT_FALSE(registry.KeyExists(RegistryRoot::LocalMachine, kSettingsKey));
}

TEST(WindowsVersion, NamesTheVersionsItKnows) {
  using enum SystemVersion::Platform;
  const std::pair<SystemVersion, const char*> cases[] = {{{Windows9x, 4, 0}, "Windows 95"},
                                                         {{Windows9x, 4, 10}, "Windows 98"},
                                                         {{Windows9x, 4, 90}, "Windows Mellinnium"},
                                                         {{Windows9x, 4, 5}, ""},
                                                         {{WindowsNt, 3, 51}, "Windows NT 3.51"},
                                                         {{WindowsNt, 4, 0}, "Windows NT 4.0"},
                                                         {{WindowsNt, 5, 0}, "Windows 2000"},
                                                         {{WindowsNt, 5, 1}, "Windows XP"},
                                                         {{WindowsNt, 5, 2}, "Windows XP"},
                                                         {{WindowsNt, 6, 1}, ""},
                                                         {{Other, 5, 1}, "Failed"}};
  for (const auto& [version, name] : cases) EXPECT_EQ(GetWindowsVersionName(version), name);
  for (const std::string name : {"Windows 98", "Windows 2000", ""})
    EXPECT_EQ(IsOldWindows(name), name == "Windows 98");
}

}  // namespace
}  // namespace orven::test
