// SPDX-License-Identifier: GPL-3.0-or-later
#include <gmock/gmock.h>

#include "support/world.h"

namespace orven::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr const char* kSelectDevice = "Select Modem Device From Options/Devices [Modem Device]";

class LineManagerTest : public testing::Test, public World {
 protected:
  /// Puts simulated lines of these names in place of the lines; gives the indexes of those that are open
  /// then.
  std::vector<std::int32_t> Replace(const std::vector<std::string>& names) {
    Machine().line.ReplaceDevices([&] {
      std::vector<TelephoneDevice> devices;
      for (const auto& name : names) devices.push_back({std::make_unique<SimLine>(name, time)});
      EXPECT_TRUE(Tapi1->Replace(std::move(devices))) << "a line is still open";
    });
    std::vector<std::int32_t> open;
    for (std::int32_t i = 0; i < Tapi1->GetNumDevs(); ++i) {
      if (Tapi1->IsLineOpen(i)) open.push_back(i);
    }
    return open;
  }
};

TEST_F(LineManagerTest, TakesTheFirstUsableDeviceWhenNoneWasChosen) {
  Start();
  EXPECT_TRUE(Logged("SelectDevice->LineIndex: 0  Device Name: Sim"));
  EXPECT_TRUE(Logged("LineOpen[LineIndex:0 Device Name:Sim]->Success"));
  EXPECT_EQ(registry.Text("Modem") + registry.Text("ModemName"), "0Sim");
  EXPECT_TRUE(views.line_on);
  EXPECT_EQ(views.Status(), "Monitoring Sim");
  EXPECT_TRUE(views.Had("sound:/home/orven/beep.wav"));
  EXPECT_THAT(LoggedBy([&] { window->TurnOn(); }), IsEmpty()) << "the line is open already";
}

TEST_F(LineManagerTest, ADeviceThatCannotHearDigitsIsNotUsable) {
  line->MutableCapabilities().monitor_digits = false;
  Start();
  EXPECT_EQ(registry.Text("Modem") + registry.Text("ModemName"), "-2");
  EXPECT_TRUE(Logged("SelectDevice->LineIndex: -2  Device Name: "));
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
  EXPECT_THAT(dialogs.informations, ElementsAre(kSelectDevice, kSelectDevice));
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
  EXPECT_EQ(views.Status(), "Monitoring Sim");
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
  EXPECT_THAT(Replace({"New", "Sim"}), ElementsAre(1));
  EXPECT_EQ(views.Status(), "Monitoring Sim");
  EXPECT_THAT(Replace({"New"}), ElementsAre(0));
  EXPECT_EQ(registry.Text("ModemName"), "New");
  EXPECT_THAT(Replace({}), IsEmpty());
  EXPECT_EQ(views.Status(), "Off Mode");
  EXPECT_THAT(Replace({"Again"}), ElementsAre(0)) << "the first line that is there waits for calls";
  window->TurnOff();
  EXPECT_THAT(Replace({"Again"}), IsEmpty()) << "a line that is off stays off";
}

}  // namespace
}  // namespace orven::test
