// SPDX-License-Identifier: GPL-3.0-or-later
#include <gmock/gmock.h>

#include "support/world.h"

namespace orven::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr const char* kSelectDevice = "Select Modem Device From Options/Devices [Modem Device]";

TEST(LineManager, TakesTheFirstUsableDeviceWhenNoneWasChosen) {
  World world;
  world.Start();
  EXPECT_TRUE(world.Logged("SelectDevice->LineIndex: 0  Device Name: Sim"));
  EXPECT_TRUE(world.Logged("LineOpen[LineIndex:0 Device Name:Sim]->Success"));
  EXPECT_EQ(world.registry.Text("Modem"), "0");
  EXPECT_EQ(world.registry.Text("ModemName"), "Sim");
  EXPECT_TRUE(world.views.line_on);
  EXPECT_EQ(world.views.Status(), "Monitoring Sim");
  EXPECT_TRUE(world.views.Had("sound:/home/orven/beep.wav"));
  EXPECT_THAT(world.LoggedBy([&] { world.window->TurnOn(); }), IsEmpty()) << "the line is open already";
}

TEST(LineManager, ADeviceThatCannotHearDigitsIsNotUsable) {
  World world;
  world.line->MutableCapabilities().monitor_digits = false;
  world.Start();
  EXPECT_EQ(world.registry.Text("Modem"), "-2");
  EXPECT_EQ(world.registry.Text("ModemName"), "");
  EXPECT_TRUE(world.Logged("SelectDevice->LineIndex: -2  Device Name: "));
  EXPECT_THAT(world.dialogs.informations, IsEmpty());
  EXPECT_FALSE(world.views.line_on);
  EXPECT_FALSE(world.views.Had("sound:/home/orven/beep.wav"));
}

TEST(LineManager, AStoredNameThatNoDeviceHasAnymore) {
  World world;
  world.registry.Set("Modem", "3");
  world.registry.Set("ModemName", "Gone");
  world.Start();
  EXPECT_THAT(world.dialogs.informations, ElementsAre(kSelectDevice));
  EXPECT_EQ(world.registry.Text("Modem"), "-1");
  world.window->TurnOn();
  EXPECT_THAT(world.dialogs.informations, ElementsAre(kSelectDevice, kSelectDevice));
  EXPECT_FALSE(world.Tapi1->IsLineOpen(0));
}

TEST(LineManager, AFailedOpenIsLoggedWithItsReasonAndTriedAgainUntilItSucceedsOrIsTurnedOff) {
  const std::string line = "LineOpen[LineIndex:0 Device Name:Sim]->";
  const std::string taken = "Error " + line + "The line is in use by another program. Port 5060 is taken.";
  World world;
  world.line->FailOpen(kTelephonyLineInUse, "Port 5060 is taken.");
  world.Start();
  EXPECT_TRUE(world.Logged(taken));
  EXPECT_FALSE(world.views.line_on);
  EXPECT_THAT(world.LoggedBy([&] { world.RunFor(60s); }), IsEmpty()) << "the reason is known";
  EXPECT_THAT(world.LoggedBy([&] { world.window->TurnOn(); }), ElementsAre(taken)) << "somebody asked";
  world.window->TurnOff();
  world.line->FailOpen(kTelephonyOk, "");
  EXPECT_THAT(world.LoggedBy([&] { world.RunFor(60s); }), IsEmpty()) << "it was turned off";
  world.line->FailOpen(kTelephonyDeviceFailed, "No network.");
  world.window->TurnOn();
  world.line->FailOpen(kTelephonyOk, "");
  EXPECT_THAT(world.LoggedBy([&] { world.RunFor(5s); }), ElementsAre(line + "Success"));
  EXPECT_EQ(world.views.Status(), "Monitoring Sim");
}

TEST(LineManager, ACallStaysOnItsLineWhenAnotherDeviceIsChosen) {
  World world;
  world.Start();
  world.CallAndWaitForRecording();
  world.Machine().settings.Modem = 7;
  world.RunFor(4s);
  EXPECT_FALSE(world.line->HasCall()) << "silence hangs up the line that has the call";
  EXPECT_EQ(world.views.Status(), "Monitoring Sim");
}

TEST(LineManager, ClosesTheLineThatWasOpenedWhateverIsChosenByNow) {
  World world;
  world.Start();
  world.Machine().settings.Modem = 7;
  EXPECT_THAT(world.LoggedBy([&] { world.window->TurnOff(); }),
              ElementsAre("LineClose[LineIndex=0]->Success"));
  EXPECT_FALSE(world.Tapi1->IsLineOpen(0));
  EXPECT_EQ(world.views.Status(), "Off Mode");
  EXPECT_FALSE(world.views.line_on);
}

}  // namespace
}  // namespace orven::test
