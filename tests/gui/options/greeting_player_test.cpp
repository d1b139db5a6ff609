// SPDX-License-Identifier: GPL-3.0-or-later
#include <gmock/gmock.h>

#include <QTest>
#include <QWheelEvent>

#include "options/frmOptionsParts.h"
#include "support/world.h"

namespace orven::test {
namespace {

using testing::ElementsAre;

/// The greeting player over a library of "Away", "Hello" (the default) and "hello".
class GreetingPlayerWindow : public testing::Test {
 protected:
  GreetingPlayerWindow() {
    for (const char* name : {"Away", "hello"}) world.files.Put(FileOf(name), TimedWave::Sound(1s));
    world.Start().RunFor(1s);
    window.Fill("Hello");
    window.show();
  }
  std::string FileOf(const std::string& name) const {
    return std::string(World::kHome) + "/Greets/" + name + ".wav";
  }
  QComboBox& List() { return *window.findChild<QComboBox*>(QStringLiteral("CmbGreetsMessages")); }
  void Press(const char* key) {
    window.findChild<QToolButton*>(QStringLiteral("tlbrGreetingPlayer.") + QString::fromLatin1(key))->click();
  }
  std::vector<std::string> Names() {
    std::vector<std::string> names;
    for (int i = 0; i < List().count(); ++i) names.push_back(List().itemText(i).toStdString());
    return names;
  }

  World world;
  std::optional<std::string> made;
  GreetingPlayer engine{world.Machine().ForGreetingPlayer([this] { return made; })};
  frmOptionsGreetings window{engine, nullptr};
};

TEST_F(GreetingPlayerWindow, ButtonsWorkOnTheNameThatIsSelected) {
  EXPECT_THAT(Names(), testing::UnorderedElementsAre("Away", "Hello", "hello"));
  EXPECT_EQ(window.Selected(), "Hello");
  List().setCurrentIndex(
      List().findText(QStringLiteral("hello"), Qt::MatchFixedString | Qt::MatchCaseSensitive));
  Press("Play");
  EXPECT_EQ(world.WavePlay.played.back().path, FileOf("hello"));
  EXPECT_EQ(window.Selected(), "hello") << "names that differ in their case only";
  Press("Stop");
  EXPECT_FALSE(world.WavePlay.IsPlaying());
  Press("Add");
  EXPECT_EQ(window.Selected(), "hello") << "the creator was cancelled";
  world.files.Put(FileOf("שלום"), TimedWave::Sound(1s));
  made = "שלום";
  Press("Add");
  EXPECT_EQ(window.Selected(), "שלום");
}

TEST_F(GreetingPlayerWindow, DeletingAsksAndLeavesTheLastGreeting) {
  const auto before = Names();
  Press("Delete");
  EXPECT_THAT(world.dialogs.questions, ElementsAre("Delete Hello ?"));
  EXPECT_EQ(Names(), before);
  world.dialogs.yes = true;
  Press("Delete");
  EXPECT_FALSE(world.files.Exists(FileOf("Hello")));
  EXPECT_EQ(window.Selected(), Names().front());
  EXPECT_EQ(world.registry.Text("Greeting"), Names().front());
  EXPECT_EQ(world.shared.greeting_file, Names().front() + ".wav");
  EXPECT_EQ(world.views.greetings, Names()) << "the main window follows";
  Press("Delete");
  Press("Delete");
  EXPECT_THAT(world.dialogs.informations, ElementsAre("Can't Delete Last Greeting."));
  EXPECT_EQ(Names().size(), 1U);
}

TEST_F(GreetingPlayerWindow, WheelChangesNothingUnlessTheListWasChosen) {
  const auto turn = [this] {
    const auto place = List().rect().center();
    QWheelEvent wheel(place, List().mapToGlobal(place), {}, {0, -120}, Qt::NoButton, Qt::NoModifier,
                      Qt::NoScrollPhase, false);
    QApplication::sendEvent(&List(), &wheel);
  };
  QApplication::setActiveWindow(&window);
  window.findChild<QToolButton*>(QStringLiteral("tlbrGreetingPlayer.Play"))->setFocus();
  List().setCurrentIndex(0);
  turn();
  EXPECT_EQ(List().currentIndex(), 0);
  List().setFocus();
  turn();
  EXPECT_EQ(List().currentIndex(), 1);
}

}  // namespace
}  // namespace orven::test
