// SPDX-License-Identifier: GPL-3.0-or-later
#include <gmock/gmock.h>

#include "support/world.h"

namespace orven::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;

/// From the top: new.wav, a call without a message, old.wav; nothing is asked before deleting.
class ListCommandsTest : public testing::Test, public World {
 protected:
  ListCommandsTest() {
    AddMessage("old.wav", 4s);
    AddCallWithoutMessage();
    AddMessage("new.wav", 2s);
    registry.Set("WornDelete", "0");
    registry.Set("WornClear", "0");
    Start();
    RunFor(1s);  // the beep
  }
  void AskFirst() { Machine().settings.WornDelete = Machine().settings.WornClear = 1; }
  void ACallComesIn() {
    line->Offer();
    RunFor(10ms);
    HangUp();
  }
  /// Another program deletes a record.
  void DeleteRecord(std::int32_t number) {
    database.MoveTo(number);
    database.Delete();
  }
  std::vector<CallIcon> Icons() {
    std::vector<CallIcon> icons;
    for (const auto& row : views.rows) icons.push_back(row.icon);
    return icons;
  }

  ListCommands& commands = Machine().list_commands;
  CallList& list = Machine().ListView1;
  LocalPlayer& player = Machine().player;
};

TEST_F(ListCommandsTest, AClickReadsACallWithoutAMessageOnlyAndStopsThePlayer) {
  commands.ListView1_Click(1);
  commands.ListView1_Click(2);
  EXPECT_THAT(Icons(), ElementsAre(kUnreadMessage, kReadNoMessage, kUnreadMessage));
  EXPECT_EQ(list.Selected(), 2);
  commands.ListView1_Click(1);
  commands.ListView1_DblClick();
  EXPECT_EQ(Icons()[0], kReadMessage);
  RunFor(1s);
  EXPECT_EQ(views.slider, 50);
  commands.ListView1_Click(3);
  EXPECT_FALSE(player.Playing() || player.IsPlaying());
  EXPECT_EQ(views.slider, 0);
  EXPECT_EQ(Icons()[2], kUnreadMessage);
}

TEST_F(ListCommandsTest, DeletesTheCallThatWasMeant) {
  AskFirst();
  list.Select(2);
  commands.Delete();
  EXPECT_THAT(dialogs.questions, ElementsAre("Delete Call 2 Information ?"));
  EXPECT_EQ(list.Count(), 3) << "the answer was No";
  dialogs.yes = true;
  dialogs.while_open = [&] { ACallComesIn(); };
  commands.Delete();
  ASSERT_EQ(list.Count(), 3);
  EXPECT_EQ(views.rows[0].name, "UNKNOWN") << "the new call is there";
  EXPECT_EQ(views.rows[1].key + views.rows[2].key, "new.wavold.wav");
  EXPECT_EQ(list.Selected(), 3) << "what took its place";
}

TEST_F(ListCommandsTest, ClearKeepsTheFilesAndACallThatCameMeanwhile) {
  AskFirst();
  list.Select(1);
  player.Play();
  dialogs.yes = true;
  dialogs.while_open = [&] { ACallComesIn(); };
  commands.Clear();
  EXPECT_FALSE(player.IsPlaying());
  ASSERT_EQ(database.Records().size(), 1U);
  EXPECT_EQ(views.rows[0].name, "UNKNOWN");
  EXPECT_EQ(files.Names(messages).size(), 2U);
  EXPECT_EQ(list.Selected(), 1);
  dialogs.while_open = [] {};
  commands.Clear();
  EXPECT_THAT(database.Records(), IsEmpty());
  EXPECT_THAT(std::pair(list.Total(), list.NewCalls()), Pair(0, 0));
  commands.Clear();
  commands.Delete();
  EXPECT_THAT(dialogs.questions, ElementsAre("Clear Calls List ?", "Clear Calls List ?"))
      << "an empty list asks nothing";
}

TEST_F(ListCommandsTest, AnotherProgramsDeletionMovesNoCommandToAnotherCall) {
  list.Select(3);
  Machine().calls.MarkAsReadUnRead(3, true);
  DeleteRecord(2);
  commands.MarkAsUnread();
  EXPECT_EQ(database.Field(0, kRead), "0");
  EXPECT_EQ(list.Selected(), 2);
  EXPECT_TRUE(Logged("The call records have changed since they were shown: the list is read again"));
  DeleteRecord(1);
  commands.Delete();
  EXPECT_EQ(database.Field(0, kCallMassageName), "new.wav");
}

TEST_F(ListCommandsTest, AClickAfterAnotherProgramsDeletionActsOnTheCallThatWasSeen) {
  DeleteRecord(3);
  commands.ListView1_Selected(2);
  EXPECT_THAT(std::pair(list.Selected(), views.selection), Pair(1, 1));
  DeleteRecord(2);
  commands.ListView1_Click(1);
  EXPECT_THAT(Icons(), ElementsAre(kUnreadMessage));
  commands.Delete();
  EXPECT_THAT(std::pair(list.Selected(), list.Count()), Pair(0, 1)) << "it is gone, and no other is meant";
  commands.Next();
  EXPECT_THAT(Icons(), ElementsAre(kReadMessage)) << "without a selection it leads to the first row";
  list.FollowSelection(0);
  player.Play();
  EXPECT_TRUE(player.IsPlaying());
  database.DeleteAll();
  mouse.down = {kRightButton};
  commands.ListView1_MouseDown();
  EXPECT_THAT(views.menus, IsEmpty());
}

/// Another program removes the newest call and adds one, which gets the identity of the removed one.
TEST_F(ListCommandsTest, NoCommandMeetsAnotherCallThatHasTheIdentity) {
  const auto newest = [&]() -> std::string& { return database.Records().back().at(0); };
  const auto replaced = [&] { newest() += "!"; };
  dialogs.while_open = replaced;
  dialogs.yes = true;
  const std::pair<const char*, std::function<void()>> steps[] = {
      {"Delete", [&] { replaced(), commands.Delete(); }},
      {"Delete asks", [&] { AskFirst(), commands.Delete(); }},
      {"Clear asks", [&] { commands.Clear(); }},
      {"Mark", [&] { replaced(), commands.MarkAsRead(); }},
      {"Play", [&] { replaced(), player.Play(); }},
      {"Click", [&] { replaced(), commands.ListView1_Click(1), commands.Delete(); }}};
  for (const auto& [step, act] : steps) {
    list.Select(1);
    act();
    ASSERT_THAT(std::pair(list.Count(), list.NewCalls()), Pair(3, 3)) << step;
    EXPECT_EQ(views.rows[0].name, newest()) << step;
  }
}

TEST_F(ListCommandsTest, TheSelectionStaysOnItsCallAndAListThatIsEmptiedHasNone) {
  list.Select(1);
  ACallComesIn();
  EXPECT_THAT(std::pair(list.Selected(), views.selection), Pair(2, 2));
  EXPECT_EQ(views.rebuilds, 2) << "cleared and filled at the start, not again";
  player.Play();
  database.Records().clear();  // another program
  commands.Next();
  EXPECT_FALSE(player.IsPlaying());
  commands.Delete();
  player.Play();
  commands.MarkAsUnread();
  EXPECT_EQ(list.Selected(), 0);
  EXPECT_THAT(views.rows, IsEmpty());
  EXPECT_EQ(shell.icon.tip.substr(0, 24), std::string("ORVEN - Calls:0  New:0\0\0", 24));
}

TEST_F(ListCommandsTest, TheMenuIsForThePhysicalRightButton) {
  const auto menus = [&](std::int32_t row, MouseKey down, bool swapped) {
    list.Select(row);
    mouse.down = {down};
    mouse.swapped = swapped;
    views.menus.clear();
    commands.ListView1_MouseDown();
    return views.menus;
  };
  EXPECT_THAT(menus(1, kLeftButton, false), IsEmpty());
  EXPECT_THAT(menus(1, kRightButton, false), ElementsAre(true));
  EXPECT_THAT(menus(2, kRightButton, false), ElementsAre(false));
  EXPECT_THAT(menus(1, kRightButton, true), IsEmpty());
  EXPECT_THAT(menus(1, kLeftButton, true), ElementsAre(true));
}

TEST_F(ListCommandsTest, TheDeskDoesNotDisturbAnOwnerWhoListensByTelephone) {
  AddMessage("newest.wav", 2s);
  list.makeList();
  list.Select(1);
  CallAndWaitForAnswer();
  RunFor(100ms);
  Press("4711*");
  list.Select(2);  // whatever moves it
  const std::function<void()> moves[] = {[&] { commands.ListView1_Click(3); },
                                         [&] { commands.ListView1_Selected(3); },
                                         [&] { commands.First(); },
                                         [&] { commands.Last(); },
                                         [&] { commands.Back(); },
                                         [&] { commands.Next(); },
                                         [&] { player.Play(); },
                                         [&] { commands.ListView1_DblClick(); }};
  for (const auto& move : moves) {
    Machine().status.ShowStatus("");
    move();
    EXPECT_EQ(views.selection, 2);
    EXPECT_EQ(views.Status(), "Messages are played to the telephone: the selection stays on them");
  }
  EXPECT_FALSE(player.Playing());
  Machine().calls.DeleteItemIndex(1);
  list.makeList();
  RunFor(9s);
  EXPECT_EQ(Wave1.played.size(), 4U) << "the greeting and every message; what he was hearing was deleted";
}

TEST_F(ListCommandsTest, ALongSearchForAMessageLetsOtherEventsRunAndEndsWhenItIsStopped) {
  for (int call = 0; call < 35; ++call) AddCallWithoutMessage();
  list.makeList();
  list.Select(1);
  player.Play();
  EXPECT_FALSE(player.Playing()) << "other events first";
  RunFor(10ms);
  EXPECT_EQ(list.Selected(), 36);
  EXPECT_TRUE(player.Playing());
  EXPECT_EQ(list.NewCalls(), 2) << "the calls on the way are read, the rest is not";
  const std::pair<std::int32_t, std::function<void()>> ends[] = {{1, [&] { player.PressStop(); }},
                                                                 {2, [&] { commands.ListView1_Click(2); }},
                                                                 {1, [&] { window->Exit(); }}};
  for (const auto& [selected, end] : ends) {
    list.Select(1);
    player.Play();
    end();
    RunFor(10ms);
    EXPECT_EQ(list.Selected(), selected);
    EXPECT_FALSE(player.Playing());
  }
}

TEST_F(ListCommandsTest, NothingToPlayStopsWhatPlays) {
  AddCallWithoutMessage();
  std::ranges::rotate(database.Records(), database.Records().end() - 1);
  list.makeList();
  list.Select(1);
  player.Play();
  list.Select(4);
  player.Play();
  EXPECT_FALSE(player.Playing() || player.IsPlaying());
  EXPECT_EQ(views.rows[3].icon, kReadNoMessage);
  list.Select(1);
  files.Delete(messages + "new.wav");
  EXPECT_THAT(LoggedBy([&] { player.Play(); }), ElementsAre("wave error 4"));
  EXPECT_FALSE(player.Playing());
}

TEST_F(ListCommandsTest, ThePictureIsTheSelectedMessages) {
  list.Select(3);
  EXPECT_EQ(waveforms.path, messages + "old.wav");
  waveforms.done({{0.5F}, 4s});
  EXPECT_EQ(views.waveform.peaks.size(), 1U);
  list.Select(2);
  EXPECT_EQ(waveforms.path, "");
  EXPECT_THAT(views.waveform.peaks, IsEmpty());
}

}  // namespace
}  // namespace orven::test
