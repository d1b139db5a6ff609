// SPDX-License-Identifier: GPL-3.0-or-later
// The options dialog with invalid values and with values that cannot be stored. Its window has separate
// tests.
#include "options/options_dialog.h"

#include <gmock/gmock.h>

#include "support/world.h"

namespace orven::test {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

class Options : public testing::Test, public World {
 protected:
  Options() { Start().RunFor(1s); }

  OptionsDialog dialog{Machine().ForOptionsDialog()};
};

TEST_F(Options, BadValuesAreLoggedAndTheRestIsShownAndStored) {
  for (const char* name : {"SecSilence", "cDropSilence", "Sound"}) registry.Set(name, "loud");
  EXPECT_THAT(dialog.Lists().cmbModemDev, ElementsAre("Sim"));
  OptionChoices choices;
  EXPECT_THAT(LoggedBy([&] { choices = dialog.Load(); }),
              testing::Contains("ErrGetOptions->13 Type mismatch").Times(3));
  EXPECT_TRUE(choices.cmbSilenceSec.empty() && choices.cmbSoundDev == -1 && choices.txtNumOfRing == "2");
  choices.cmbSilenceSec = "soon";
  choices.txtNumOfRing = "";
  choices.txtRecLong = "547";
  choices.txtPass = " 1 2 ";
  choices.cmbModemDev = "No such device";
  choices.CmbGreetsMessages = "";
  EXPECT_THAT(LoggedBy([&] { dialog.Save(choices); }),
              ElementsAre("ErrSaveOptionOption 13 Type mismatch", "ErrSaveOptionOption 13 Type mismatch",
                          "ErrSaveOptionOption 6 Overflow"));
  std::string stored;
  for (const char* name :
       {"SecSilence", "NumOfRing", "MaxRec", "Pass", "Modem", "ModemName", "Sound", "Greeting"})
    stored += registry.Text(name) + "|";
  EXPECT_EQ(stored, "loud|2|547| 1 2 |-1|No such device|loud|Hello|");
  EXPECT_EQ(Machine().settings.NumOfRing, 2);
  EXPECT_EQ(Machine().settings.max_record_seconds, 60) << "547 minutes, in seconds, do not fit in 16 bits";
  EXPECT_TRUE(Tapi1->IsLineOpen(0)) << "an open line stays as it is";
}

TEST_F(Options, ValuesThatCannotBeStoredAreReportedAndUsedUntilExit) {
  auto choices = dialog.Load();
  registry.refuse_writes = true;
  choices.txtPass = "4712";
  dialog.Save(choices);
  EXPECT_THAT(dialogs.informations, ElementsAre(HasSubstr("could not be stored")));
  EXPECT_EQ(Machine().settings.Pass, "4712");
  choices.chkRenOnStart = true;
  dialog.Save(choices);
  EXPECT_THAT(dialogs.informations.back(), HasSubstr("does not start with the desktop"));
}

}  // namespace
}  // namespace orven::test
