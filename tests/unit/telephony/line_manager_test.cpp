// SPDX-License-Identifier: GPL-3.0-or-later
#include <gmock/gmock.h>

#include "support/world.h"

namespace orven::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class LineManagerTest : public testing::Test, public World {
 protected:
  /// Puts simulated lines of these names in place of the lines; gives the index of the one that is open then.
  std::int32_t Replace(const std::vector<std::string>& names) {
    Machine().line.ReplaceDevices([&] {
      std::vector<TelephoneDevice> devices;
      for (const auto& name : names) devices.push_back({std::make_unique<SimLine>(name, time)});
      EXPECT_TRUE(Tapi1->Replace(std::move(devices))) << "a line is still open";
    });
    auto open = Tapi1->GetNumDevs() - 1;
    while (open >= 0 && !Tapi1->IsLineOpen(open)) --open;
    return open;
  }
};

TEST_F(LineManagerTest, TakesTheFirstUsableDeviceWhenNoneWasChosen) {
  Start();
  EXPECT_TRUE(Logged("SelectDevice->LineIndex: 0  Device Name: Sim"));
  EXPECT_TRUE(Logged("LineOpen[LineIndex:0 Device Name:Sim]->Success"));
  EXPECT_EQ(registry.Text("Modem") + registry.Text("ModemName"), "0Sim");
  EXPECT_TRUE(views.line_on);
  EXPECT_TRUE(views.Had("sound:/home/orven/beep.wav"));
  EXPECT_THAT(LoggedBy([&] { window->TurnOn(); }), IsEmpty()) << "the line is open already";
}

TEST_F(LineManagerTest, ADeviceThatCannotHearDigitsIsNotUsable) {
  line->MutableCapabilities().monitor_digits = false;
  Start();
  EXPECT_EQ(registry.Text("Modem") + registry.Text("ModemName"), "-2");
  EXPECT_THAT(dialogs.informations, IsEmpty());
  EXPECT_FALSE(views.line_on);
  EXPECT_FALSE(views.Had("sound:/home/orven/beep.wav"));
}

TEST_F(LineManagerTest, ANameThatNoDeviceHasAnyMoreIsAskedFor) {
  registry.Set("Modem", "3");
  registry.Set("ModemName", "Gone");
  Start();
  EXPECT_EQ(registry.Text("Modem"), "-1");
  window->TurnOn();
  const auto select_device = "Select Modem Device From Options/Devices [Modem Device]";
  EXPECT_THAT(dialogs.informations, ElementsAre(select_device, select_device));
  EXPECT_FALSE(Tapi1->IsLineOpen(0));
}

TEST_F(LineManagerTest, AFailedOpenIsLoggedOnceAndTriedAgainUntilItSucceedsOrIsTurnedOff) {
  const std::string opens = "LineOpen[LineIndex:0 Device Name:Sim]->";
  const std::string taken = "Error " + opens + "The line is in use by another program. Port 5060 is taken.";
  line->FailOpen(kTelephonyLineInUse, "Port 5060 is taken.");
  Start();
  EXPECT_TRUE(Logged(taken));
  EXPECT_FALSE(views.line_on);
  EXPECT_THAT(LoggedBy([&] { RunFor(60s); }), IsEmpty()) << "the reason is known";
  EXPECT_THAT(LoggedBy([&] { window->TurnOn(); }), ElementsAre(taken)) << "somebody asked";
  window->TurnOff();
  line->FailOpen(kTelephonyOk, "");
  EXPECT_THAT(LoggedBy([&] { RunFor(60s); }), IsEmpty()) << "it was turned off";
  line->FailOpen(kTelephonyDeviceFailed, "No network.");
  window->TurnOn();
  line->FailOpen(kTelephonyOk, "");
  EXPECT_THAT(LoggedBy([&] { RunFor(5s); }), ElementsAre(opens + "Success"));
}

TEST_F(LineManagerTest, ACallAndItsLineStayTogetherWhenAnotherDeviceIsChosen) {
  Start();
  CallAndWaitForRecording();
  Machine().settings.Modem = 7;
  RunFor(4s);
  EXPECT_FALSE(line->HasCall()) << "silence hangs up the line that has the call";
  EXPECT_EQ(views.Status(), "Monitoring Sim");
  EXPECT_THAT(LoggedBy([&] { window->TurnOff(); }), ElementsAre("LineClose[LineIndex=0]->Success"));
  EXPECT_FALSE(Tapi1->IsLineOpen(0) || views.line_on);
  EXPECT_EQ(views.Status(), "Off Mode");
}

TEST_F(LineManagerTest, AmongReplacedDevicesTheChosenOneIsTakenAgainOrTheFirstUsable) {
  Start();
  EXPECT_EQ(Replace({"New", "Sim"}), 1);
  EXPECT_EQ(views.Status(), "Monitoring Sim");
  EXPECT_EQ(Replace({"New"}), 0);
  EXPECT_EQ(registry.Text("ModemName"), "New");
  EXPECT_EQ(Replace({}), -1);
  EXPECT_EQ(views.Status(), "Off Mode");
  EXPECT_EQ(Replace({"Again"}), 0) << "the first line that is there waits for calls";
  window->TurnOff();
  EXPECT_EQ(Replace({"Again"}), -1) << "a line that is off stays off";
}

}  // namespace
}  // namespace orven::test
