// SPDX-License-Identifier: GPL-3.0-or-later
#include <gmock/gmock.h>

#include "support/world.h"

namespace orven::test {
namespace {

class ReplacedDevices : public testing::Test {
 protected:
  ReplacedDevices() { world.Start(); }
  void Replace(const std::vector<std::string>& names) {
    world.Machine().line.ReplaceDevices([&] {
      std::vector<TelephoneDevice> devices;
      for (const auto& name : names) devices.push_back({std::make_unique<SimLine>(name, world.time)});
      EXPECT_TRUE(world.Tapi1->Replace(std::move(devices))) << "a line is still open";
    });
    for (std::int32_t i = 0; i < world.Tapi1->GetNumDevs(); ++i) {
      if (world.Tapi1->IsLineOpen(i)) open.push_back(i);
    }
  }

  World world;
  std::vector<std::int32_t> open;
};

TEST_F(ReplacedDevices, TheChosenOneIsTakenAgainWhereverItStandsNow) {
  Replace({"New", "Sim"});
  EXPECT_THAT(open, testing::ElementsAre(1));
  EXPECT_EQ(world.views.Status(), "Monitoring Sim");
}

TEST_F(ReplacedDevices, TheFirstUsableOneIsTakenWhereItHasGoneAndNoneWhereThereIsNone) {
  Replace({"New"});
  EXPECT_THAT(open, testing::ElementsAre(0));
  EXPECT_EQ(world.registry.Text("ModemName"), "New");
  open.clear();
  Replace({});
  EXPECT_EQ(world.views.Status(), "Off Mode");
  Replace({"Again"});
  EXPECT_THAT(open, testing::ElementsAre(0)) << "the first line that there is waits for calls";
}

TEST_F(ReplacedDevices, ALineThatIsOffStaysOff) {
  world.window->TurnOff();
  Replace({"Sim"});
  EXPECT_THAT(open, testing::IsEmpty());
}

}  // namespace
}  // namespace orven::test
