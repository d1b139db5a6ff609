// SPDX-License-Identifier: GPL-3.0-or-later
#include "options/options_dialog.h"

#include <gmock/gmock.h>

#include "base/runtime_error.h"
#include "support/world.h"

namespace orven::test {
namespace {

using testing::IsEmpty;

/// The greeting toolbar of the options dialog, over a library of "Away", "Bureau" and "Hello".
class Greetings : public testing::Test {
 protected:
  Greetings() {
    for (const char* name : {"Away", "Bureau"}) world.files.Put(FileOf(name), TimedWave::Sound(1s));
    world.Start().RunFor(1s);
  }
  std::string FileOf(const std::string& name) const {
    return std::string(World::kHome) + "/Greets/" + name + ".wav";
  }

  World world;
  GreetingPlayer player{world.Machine().ForGreetingPlayer([] { return std::nullopt; })};
};

TEST_F(Greetings, AnEmptyLibraryAndMissingFilesAreBorne) {
  auto list = player.Fill();
  for (const char* name : {"Away", "Bureau", "Hello"}) world.files.Delete(FileOf(name));
  world.dialogs.yes = true;
  player.ButtonClick("Play", list);
  player.ButtonClick("Delete", list);
  EXPECT_THAT(list.names, IsEmpty());
  EXPECT_EQ(list.selected, "");
  player.ButtonClick("Play", list);
  player.ButtonClick("Delete", list);
  EXPECT_EQ(world.registry.Text("Greeting"), "");
}

}  // namespace
}  // namespace orven::test
