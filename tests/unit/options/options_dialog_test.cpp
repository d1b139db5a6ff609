// SPDX-License-Identifier: GPL-3.0-or-later
// What the options dialog does with values that are wrong or cannot be stored. The rest is tested in its
// window.
#include "options/options_dialog.h"

#include <gmock/gmock.h>

#include "support/world.h"

namespace orven::test {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

class Options : public testing::Test {
 protected:
  Options() { world.Start().RunFor(1s); }

  World world;
  AnsweringMachine& machine = world.Machine();
  OptionsDialog dialog{machine.ForOptionsDialog()};
};

TEST_F(Options, ADamagedValueIsLoggedAndTheOthersAreShown) {
  for (const char* name : {"SecSilence", "cDropSilence", "Sound"}) world.registry.Set(name, "loud");
  OptionChoices damaged;
  EXPECT_THAT(world.LoggedBy([&] { damaged = dialog.Load(); }),
              ElementsAre("ErrGetOptions->13 Type mismatch", "ErrGetOptions->13 Type mismatch",
                          "ErrGetOptions->13 Type mismatch"));
  EXPECT_EQ(damaged.cmbSilenceSec, "");
  EXPECT_EQ(damaged.cmbSoundDev, -1);
  EXPECT_EQ(damaged.txtNumOfRing, "2");
}

TEST_F(Options, BadNumbersAndMissingChoicesAreSkippedAndTheRestIsStored) {
  auto choices = dialog.Load();
  choices.cmbSilenceSec = "soon";
  choices.txtNumOfRing = "";
  choices.txtRecLong = "547";
  choices.txtPass = " 1 2 ";
  choices.cmbModemDev = "No such device";
  choices.cmbSoundDev = -1;
  choices.CmbGreetsMessages = "";
  EXPECT_THAT(world.LoggedBy([&] { dialog.Save(choices); }),
              ElementsAre("ErrSaveOptionOption 13 Type mismatch", "ErrSaveOptionOption 13 Type mismatch",
                          "ErrSaveOptionOption 6 Overflow"));
  const std::pair<const char*, const char*> stored[] = {{"SecSilence", "3"}, {"NumOfRing", "2"},
                                                        {"MaxRec", "547"},   {"Pass", " 1 2 "},
                                                        {"Modem", "-1"},     {"ModemName", "No such device"},
                                                        {"Sound", "0"},      {"Greeting", "Hello"}};
  for (const auto& [name, value] : stored) EXPECT_EQ(world.registry.Text(name), value) << name;
  EXPECT_EQ(machine.settings.NumOfRing, 2);
  EXPECT_EQ(world.shared.max_record_seconds, 60) << "547 minutes of seconds do not fit";
  EXPECT_TRUE(world.Tapi1->IsLineOpen(0)) << "an open line stays as it is";
}

TEST_F(Options, WhatCannotBeStoredIsToldAndUsedUntilTheProgramEnds) {
  auto choices = dialog.Load();
  world.registry.refuse_writes = true;
  choices.txtPass = "4712";
  dialog.Save(choices);
  EXPECT_THAT(world.dialogs.informations, ElementsAre(HasSubstr("could not be stored")));
  EXPECT_EQ(machine.settings.Pass, "4712");
  choices.chkRenOnStart = true;
  dialog.Save(choices);
  EXPECT_THAT(world.dialogs.informations.back(), HasSubstr("does not start with the desktop"));
}

}  // namespace
}  // namespace orven::test
