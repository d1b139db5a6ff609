// SPDX-License-Identifier: GPL-3.0-or-later
#include <gmock/gmock.h>

#include "core/mdlWinVersion.h"
#include "support/world.h"

namespace orven::test {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;
using enum WindowFrame::Toolbar;

TEST(MainWindow, LoadsThenStarts) {
  World world;
  world.files.Put("/home/orven/Greets/Away.wav", "");
  world.files.Put("/home/orven/Greets/notes.txt", "");
  world.database.open_note = "Calls was damaged";
  world.views.toolbar_styles = {{ToolBarPlayer, 0x801}, {TBQuickOption, 0x800}};
  world.Start();
  EXPECT_THAT(world.SystemLog(), ElementsAre("Load ORVEN", "LineInitialize->Success", "Calls was damaged",
                                             "SelectDevice->LineIndex: 0  Device Name: Sim",
                                             "LineOpen[LineIndex:0 Device Name:Sim]->Success"));
  EXPECT_THAT(world.CallsLog(), ElementsAre("Load ORVEN"));
  EXPECT_EQ(world.views.rings.size(), 20U);
  EXPECT_EQ(world.views.rings.back(), "20");
  EXPECT_EQ(world.views.shown_rings, 2);
  EXPECT_THAT(world.views.greetings, ElementsAre("Away", "Hello"));
  EXPECT_EQ(world.views.selected_greeting, "Hello");
  EXPECT_TRUE(world.views.shown_record);
  EXPECT_EQ(world.views.list_style, 0x21U);
  EXPECT_EQ(world.views.columns.size(), 6U);
  EXPECT_EQ(world.views.toolbar_styles[Toolbar1], 0x800U);
  EXPECT_EQ(world.views.toolbar_styles[ToolBarPlayer], 1U);
  EXPECT_EQ(world.views.toolbar_styles[TBQuickOption], 0U);
  EXPECT_FALSE(world.views.slider_enabled);
  EXPECT_TRUE(world.views.shown);
}

TEST(MainWindow, ClosingOnlyHidesAndExitEnds) {
  World world;
  world.Start();
  EXPECT_FALSE(world.window->Unload());
  EXPECT_FALSE(world.views.shown);
  EXPECT_TRUE(world.Tapi1->IsLineOpen(0));
  EXPECT_FALSE(world.ended);
  EXPECT_THAT(world.SystemLog(), Not(Contains("Unload ORVEN")));

  world.window->Exit();
  world.window->Exit();  // a second signal
  EXPECT_TRUE(world.ended);
  EXPECT_FALSE(world.Tapi1->IsLineOpen(0));
  EXPECT_EQ(std::ranges::count(world.SystemLog(), "Unload ORVEN"), 1);
  EXPECT_EQ(world.CallsLog().back(), "Unload ORVEN");
  EXPECT_TRUE(world.views.others_closed);
  EXPECT_EQ(world.shell.icon.icon, NotifyIconPicture::PicSysTryNothing);
}

TEST(MainWindow, AnExitDuringTheStartUpsMessageBoxEndsTheStart) {
  World world;
  world.registry.Set("Modem", "3");
  world.dialogs.while_open = [&] { world.window->Exit(); };
  world.Start();
  EXPECT_TRUE(world.window->Ended());
  EXPECT_FALSE(world.views.shown);
}

class EntryRoutineTest : public testing::Test {
 protected:
  EntryRoutineTest() {
    sources.defaults = [] { return std::vector{RegString("NumOfRing", "4"), RegString("Pass", "default")}; };
    sources.random = [](std::uint32_t bound) { return 7 % bound; };
    sources.announce_password = [this](const std::string& text) { announced.push_back(text); };
  }

  bool Run(const std::string& command_line) {
    FirstStart first_start(registry, world.system, shared, sources);
    EntryRoutine entry(world.system, world.dialogs, first_start, shared,
                       [this](bool first) { prepared.push_back(first); });
    return entry.Run(command_line, *world.window);
  }

  World world;
  MemoryRegistry registry;
  SharedOptions shared{
      .application_version = "", .application_folder = "/app", .messages_path = "", .greeting_file = ""};
  FirstStart::Sources sources;
  std::vector<std::string> announced;
  std::vector<bool> prepared;
};

TEST_F(EntryRoutineTest, FirstStartWritesDefaultsAndTheMachinesOwnSettings) {
  EXPECT_TRUE(Run(""));
  EXPECT_EQ(shared.application_version, "1.0.0.22");
  EXPECT_THAT(world.system.common_controls, ElementsAre(std::pair(8U, 0x200U)));
  EXPECT_EQ(registry.Text("NumOfRing"), "4");
  EXPECT_EQ(registry.Text("MassagesPath"), "/app/Messages/");
  EXPECT_EQ(registry.Text("cAnimation"), "Not Found");
  EXPECT_EQ(registry.Text("ORVEN", kAutostartKey), "/app/ORVEN.exe -st");
  EXPECT_EQ(registry.Text("Pass"), "777777");
  EXPECT_THAT(announced, ElementsAre("777777"));

  registry.Set("Pass", "mine");
  EXPECT_TRUE(Run(""));
  EXPECT_EQ(registry.Text("Pass"), "mine");
  EXPECT_THAT(prepared, ElementsAre(true, false));
}

TEST_F(EntryRoutineTest, AnimationIsSwitchedOnWhereTheSystemCanShowIt) {
  world.system.version = {SystemVersion::Platform::WindowsNt, 5, 2};
  Run("");
  EXPECT_EQ(registry.Text("cAnimation"), "1");
}

TEST_F(EntryRoutineTest, OnlyTheExactSwitchStartsHidden) {
  for (const char* command_line : {" -st", "-ST", "-st ", ""}) {
    world.views.shown = false;
    Run(command_line);
    EXPECT_TRUE(world.views.shown) << '"' << command_line << '"';
  }
  world.views.shown = false;
  Run("-st");
  EXPECT_FALSE(world.views.shown);
  EXPECT_TRUE(world.Machine().window_hidden);
  EXPECT_TRUE(world.Tapi1->IsLineOpen(0));
}

TEST_F(EntryRoutineTest, ASecondInstanceTouchesNothing) {
  world.system.instance_free = false;
  EXPECT_FALSE(Run(""));
  EXPECT_THAT(world.dialogs.messages, ElementsAre("ORVEN is still running"));
  world.window->Exit();  // a signal while the box is open
  EXPECT_TRUE(world.ended);
  EXPECT_FALSE(registry.KeyExists(RegistryRoot::LocalMachine, kSettingsKey));
  EXPECT_THAT(prepared, IsEmpty());
  EXPECT_THAT(world.SystemLog(), IsEmpty());
}

TEST_F(EntryRoutineTest, APasswordThatCouldNotBeStoredIsNotAnnounced) {
  registry.refuse_writes = true;
  Run("");
  EXPECT_THAT(announced, IsEmpty());
}

TEST(WindowsVersion, NamesTheVersionsItKnows) {
  using P = SystemVersion::Platform;
  const std::pair<SystemVersion, const char*> cases[] = {{{P::Windows9x, 4, 0}, "Windows 95"},
                                                         {{P::Windows9x, 4, 10}, "Windows 98"},
                                                         {{P::Windows9x, 4, 90}, "Windows Mellinnium"},
                                                         {{P::Windows9x, 4, 5}, ""},
                                                         {{P::WindowsNt, 3, 51}, "Windows NT 3.51"},
                                                         {{P::WindowsNt, 4, 0}, "Windows NT 4.0"},
                                                         {{P::WindowsNt, 5, 0}, "Windows 2000"},
                                                         {{P::WindowsNt, 5, 1}, "Windows XP"},
                                                         {{P::WindowsNt, 5, 2}, "Windows XP"},
                                                         {{P::WindowsNt, 6, 1}, ""},
                                                         {{P::Other, 5, 1}, "Failed"}};
  for (const auto& [version, name] : cases) EXPECT_EQ(GetWindowsVersionName(version), name);
  EXPECT_TRUE(IsOldWindows("Windows 98"));
  EXPECT_FALSE(IsOldWindows("Windows 2000"));
  EXPECT_FALSE(IsOldWindows(""));
}

}  // namespace
}  // namespace orven::test
