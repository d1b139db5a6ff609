// SPDX-License-Identifier: GPL-3.0-or-later
#include "options/greeting_player.h"

#include <gmock/gmock.h>

#include "platform/runtime_error.h"
#include "support/world.h"

namespace orven::test {
namespace {

using testing::ElementsAre;
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
  std::optional<std::string> made;
  GreetingPlayer player{world.Machine().ForGreetingPlayer([this] { return made; })};
};

TEST_F(Greetings, ArePlayedStoppedAndMade) {
  auto list = player.Fill("Hello");
  EXPECT_THAT(list.names, ElementsAre("Away", "Bureau", "Hello"));
  EXPECT_EQ(list.selected, "Hello");
  EXPECT_EQ(player.Fill("Gone").selected, "Away");
  player.ButtonClick("Play", list);
  EXPECT_EQ(world.WavePlay.played.back().path, FileOf("Hello"));
  player.ButtonClick("Stop", list);
  EXPECT_FALSE(world.WavePlay.IsPlaying());

  player.ButtonClick("Add", list);
  EXPECT_EQ(list.selected, "Hello") << "the creator was cancelled";
  world.files.Put(FileOf("New"), TimedWave::Sound(1s));
  made = "New";
  player.ButtonClick("Add", list);
  EXPECT_EQ(list.selected, "New");
  EXPECT_THAT(list.names, ElementsAre("Away", "Bureau", "Hello", "New"));
}

TEST_F(Greetings, AreDeletedWhenAPersonSaysYesAndTheFirstBecomesTheDefault) {
  auto list = player.Fill("Hello");
  player.ButtonClick("Delete", list);
  EXPECT_THAT(world.dialogs.questions, ElementsAre("Delete Hello ?"));
  EXPECT_TRUE(world.files.Exists(FileOf("Hello")));
  EXPECT_EQ(world.registry.Text("Greeting"), "Hello");

  world.dialogs.yes = true;
  player.ButtonClick("Delete", list);
  EXPECT_FALSE(world.files.Exists(FileOf("Hello")));
  EXPECT_THAT(list.names, ElementsAre("Away", "Bureau"));
  EXPECT_EQ(list.selected, "Away");
  EXPECT_THAT(world.views.greetings, ElementsAre("Away", "Bureau"));
  EXPECT_EQ(world.registry.Text("Greeting"), "Away");
  EXPECT_EQ(world.shared.greeting_file, "Away.wav");

  player.ButtonClick("Delete", list);
  player.ButtonClick("Delete", list);
  EXPECT_THAT(world.dialogs.informations, ElementsAre("Can't Delete Last Greeting."));
  EXPECT_TRUE(world.files.Exists(FileOf("Bureau")));
}

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
