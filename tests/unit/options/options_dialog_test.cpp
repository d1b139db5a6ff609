// SPDX-License-Identifier: GPL-3.0-or-later
#include "options/options_dialog.h"

#include <gmock/gmock.h>

#include "support/world.h"

namespace orven::test {
namespace {

using testing::Contains;
using testing::ElementsAre;

/// What the dialog was told while it was open.
struct Watcher : OptionsView {
  std::vector<std::optional<std::int32_t>> levels;
  std::vector<std::string> cards;
  std::string path;
  void ShowLevel(std::optional<std::int32_t> level) override { levels.push_back(level); }
  void ShowSoundCards(const std::vector<std::string>& names) override { cards = names; }
  void ShowMessagesPath(const std::string& now, const std::optional<RelocationProgress>&) override {
    path = now;
  }
};

/// The dialog in a running program with the devices "Sim" and "Old modem".
class Options : public testing::Test {
 protected:
  Options() { world.Start().RunFor(1s); }

  std::string Autostart() { return world.registry.Text("ORVEN", kAutostartKey); }

  World world;
  AnsweringMachine& machine = world.Machine();
  OptionsDialog dialog{machine.ForOptionsDialog()};
};

TEST_F(Options, WhatIsStoredWrongIsNamedAndTheRestIsShown) {
  for (const char* name : {"SecSilence", "cDropSilence", "Sound"}) world.registry.Set(name, "loud");
  OptionChoices damaged;
  const auto lines = world.LoggedBy([&] { damaged = dialog.Load(); });
  EXPECT_THAT(lines, testing::Each("ErrGetOptions->13 Type mismatch"));
  EXPECT_EQ(lines.size(), 3U);
  EXPECT_EQ(damaged.cmbSilenceSec, "");
  EXPECT_EQ(damaged.cmbSoundDev, -1);
  EXPECT_EQ(damaged.txtNumOfRing, "2") << "the others are shown";
}

TEST_F(Options, SavingStoresEverythingAndTheNextCallUsesIt) {
  world.files.Put("/home/orven/Greets/Away.wav", TimedWave::Sound(1s));
  auto choices = dialog.Load();
  choices.cmbSilenceSec = "7";
  choices.chkDropIfSilnce = false;
  choices.sldSilence = 5;
  choices.chkWornDelete = choices.chkWornClear = choices.chkAllowRemoteAccess = false;
  choices.chkListMessagesOnly = choices.chkPreScreen = choices.chkCompress = true;
  choices.cmdRecordMessage = choices.chkQuickToolBar = false;
  choices.txtNumOfRing = "4";
  choices.txtRecLong = "5";
  choices.txtPass = " 1 2 ";
  choices.cmbSoundDev = 3;
  choices.CmbGreetsMessages = "Away";
  choices.chkRenOnStart = true;
  dialog.Save(choices);
  EXPECT_EQ(Autostart(), "/home/orven/ORVEN.exe -st");
  EXPECT_EQ(machine.settings.ValSilence, 50);
  EXPECT_EQ(machine.settings.Pass, " 1 2 ");
  EXPECT_EQ(world.shared.num_of_ring, 4);
  EXPECT_EQ(world.shared.max_record_seconds, 300);
  EXPECT_EQ(world.shared.greeting_file, "Away.wav");
  EXPECT_FALSE(world.shared.record_messages);
  EXPECT_EQ(world.views.selected_greeting, "Away");
  EXPECT_EQ(world.views.shown_rings, 4);
  EXPECT_FALSE(world.views.shown_record || world.views.quick_toolbar);
  EXPECT_TRUE(machine.line.LineOn());

  choices.chkRenOnStart = false;
  dialog.Save(choices);
  dialog.Save(choices);
  EXPECT_EQ(Autostart(), kNotFound);
}

TEST_F(Options, WhatIsNoNumberIsSkippedAndTheRestIsStored) {
  auto choices = dialog.Load();
  choices.cmbSilenceSec = "soon";
  choices.txtNumOfRing = "";
  choices.txtRecLong = "547";
  choices.txtPass = "0815";
  choices.cmbModemDev = "No such device";
  choices.cmbSoundDev = -1;
  choices.CmbGreetsMessages = "";
  const auto lines = world.LoggedBy([&] { dialog.Save(choices); });
  EXPECT_THAT(lines, ElementsAre("ErrSaveOptionOption 13 Type mismatch",
                                 "ErrSaveOptionOption 13 Type mismatch", "ErrSaveOptionOption 6 Overflow"));
  EXPECT_EQ(world.registry.Text("SecSilence"), "3");
  EXPECT_EQ(world.registry.Text("NumOfRing"), "2");
  EXPECT_EQ(machine.settings.NumOfRing, 2);
  EXPECT_EQ(world.registry.Text("MaxRec"), "547");
  EXPECT_EQ(world.shared.max_record_seconds, 60) << "its seconds do not fit";
  EXPECT_EQ(world.registry.Text("Pass"), "0815");
  EXPECT_EQ(world.registry.Text("Modem"), "-1");
  EXPECT_EQ(world.registry.Text("ModemName"), "No such device");
  EXPECT_EQ(world.registry.Text("Sound") + world.registry.Text("Greeting"), "0Hello");
  EXPECT_TRUE(world.Tapi1->IsLineOpen(0)) << "an open line stays as it is";

  world.registry.refuse_writes = true;
  choices.txtPass = "4712";
  dialog.Save(choices);
  EXPECT_THAT(world.dialogs.informations, Contains(testing::HasSubstr("could not be stored")));
  EXPECT_EQ(machine.settings.Pass, "4712");
  world.dialogs.informations.clear();
  choices.chkRenOnStart = true;
  dialog.Save(choices);
  EXPECT_THAT(world.dialogs.informations, Contains(testing::HasSubstr("does not start with the desktop")));
}

TEST_F(Options, DevicesAreDescribedAndChosenCardsKeepTheirPlaces) {
  const auto capabilities = dialog.Capabilities("Sim");
  ASSERT_EQ(capabilities.size(), 8U);
  EXPECT_EQ(capabilities[0], std::pair(std::string("Device Name:"), std::string("Sim")));
  EXPECT_EQ(capabilities[7], std::pair(std::string("Auto Voice:"), std::string("Yes")));
  EXPECT_THAT(dialog.Capabilities("sim"), testing::Each(testing::Pair(testing::Ne(""), "")));
  machine.settings.Sound = 2;
  EXPECT_THAT(dialog.Lists().cmbSoundDev,
              ElementsAre("Default output", "Sound card 1 (not there now)", "Sound card 2 (not there now)"));
}

TEST_F(Options, TheLevelIsFollowedOnlyWhileTheDialogIsOpen) {
  Watcher watcher;
  dialog.Watch(&watcher);
  world.CallAndWaitForAnswer();
  EXPECT_EQ(watcher.levels.front(), std::nullopt);
  world.loud = 321;
  for (const auto* heard : {"the greeting", "the beep", "the recording"}) {
    world.RunFor(1s);
    EXPECT_EQ(watcher.levels.back(), 321) << heard;
  }
  world.cards.names.emplace_back("Headset");
  world.RunFor(2s);
  EXPECT_THAT(watcher.cards, ElementsAre("Default output", "Headset"));
  dialog.Watch(nullptr);
  const auto shown = watcher.levels.size();
  world.RunFor(1s);
  EXPECT_EQ(watcher.levels.size(), shown);
}

TEST_F(Options, ANewFolderIsStoredAtOnce) {
  world.AddMessage("one.wav", 1s);
  dialog.BrowsMessagesPath();
  EXPECT_EQ(world.dialogs.browse_title, "Save Messages To");
  EXPECT_EQ(machine.move.Relocating(), std::nullopt) << "cancelled";
  world.dialogs.browsed = "/mnt/new";
  Watcher watcher;
  dialog.Watch(&watcher);
  dialog.BrowsMessagesPath();
  EXPECT_NE(machine.move.Relocating(), std::nullopt);
  EXPECT_EQ(world.registry.Text("MassagesPath"), world.messages) << "not before everything is moved";
  world.RunFor(100ms);
  EXPECT_EQ(world.registry.Text("MassagesPath"), "/mnt/new/");
  EXPECT_EQ(watcher.path, "/mnt/new/");
  EXPECT_THAT(world.files.Names("/mnt/new/"), ElementsAre("one.wav"));
  world.registry.Set("MassagesPath", "");
  dialog.BrowsMessagesPath();
  EXPECT_EQ(world.registry.Text("MassagesPath"), "/mnt/new/") << "the same folder again";
}

}  // namespace
}  // namespace orven::test
