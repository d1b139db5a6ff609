// SPDX-License-Identifier: GPL-3.0-or-later
#include <gmock/gmock.h>

#include "records/call.h"
#include "support/world.h"

namespace orven::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

/// From the top: new.wav, a call without a message, old.wav; nothing is asked before deleting.
class ListCommandsTest : public testing::Test {
 protected:
  ListCommandsTest() {
    world.AddMessage("old.wav", 4s);
    world.AddCallWithoutMessage();
    world.AddMessage("new.wav", 2s);
    world.registry.Set("WornDelete", "0");
    world.registry.Set("WornClear", "0");
    world.Start();
    world.RunFor(1s);  // the beep
  }
  void AskFirst() {
    world.Machine().settings.WornDelete = 1;
    world.Machine().settings.WornClear = 1;
  }
  void ACallComesIn() {
    world.line->Offer();
    world.RunFor(10ms);
    world.HangUp();
  }
  std::vector<CallIcon> Icons() {
    std::vector<CallIcon> icons;
    for (const auto& row : world.views.rows) icons.push_back(row.icon);
    return icons;
  }

  World world;
  ListCommands& commands = world.Machine().list_commands;
  CallList& list = world.Machine().ListView1;
  LocalPlayer& player = world.Machine().player;
};

TEST_F(ListCommandsTest, AClickReadsACallWithoutAMessageOnly) {
  commands.ListView1_Click(1);
  commands.ListView1_Click(2);
  EXPECT_THAT(Icons(), ElementsAre(kUnreadMessage, kReadNoMessage, kUnreadMessage));
  EXPECT_EQ(list.Selected(), 2);
  commands.ListView1_Click(1);
  commands.ListView1_DblClick();
  EXPECT_TRUE(player.Playing());
  EXPECT_EQ(Icons()[0], kReadMessage);
  world.RunFor(1s);
  EXPECT_EQ(world.views.slider, 50);
  commands.ListView1_Click(3);
  EXPECT_FALSE(player.Playing());
  EXPECT_FALSE(player.IsPlaying());
  EXPECT_EQ(world.views.slider, 0);
  EXPECT_EQ(Icons()[2], kUnreadMessage);
}

TEST_F(ListCommandsTest, DeletesTheCallThatWasMeant) {
  AskFirst();
  list.Select(2);
  commands.Delete();
  EXPECT_THAT(world.dialogs.questions, ElementsAre("Delete Call 2 Information ?"));
  EXPECT_EQ(list.Count(), 3) << "the answer was No";

  world.dialogs.yes = true;
  world.dialogs.while_open = [&] { ACallComesIn(); };
  commands.Delete();
  EXPECT_EQ(list.Count(), 3);
  EXPECT_EQ(world.database.Field(2, kCallName), "UNKNOWN") << "the new call is there";
  EXPECT_EQ(world.database.Field(1, kCallMassageName), "new.wav");
  EXPECT_EQ(world.views.rows.size(), 3U);
  EXPECT_EQ(world.views.rows[2].key, "old.wav");
  EXPECT_EQ(list.Selected(), 3) << "what took its place";
}

TEST_F(ListCommandsTest, ClearKeepsACallThatCameMeanwhile) {
  AskFirst();
  world.dialogs.yes = true;
  world.dialogs.while_open = [&] { ACallComesIn(); };
  commands.Clear();
  EXPECT_THAT(world.dialogs.questions, ElementsAre("Clear Calls List ?"));
  ASSERT_EQ(world.database.Records().size(), 1U);
  EXPECT_EQ(world.database.Field(0, kCallName), "UNKNOWN");
  EXPECT_EQ(world.files.Names(world.messages).size(), 2U);
  EXPECT_EQ(list.Selected(), 1);
  world.dialogs.while_open = [] {};
  commands.Clear();
  EXPECT_THAT(world.database.Records(), IsEmpty());
  commands.Clear();
  commands.Delete();
  EXPECT_EQ(world.dialogs.questions.size(), 2U) << "an empty list asks nothing";
}

TEST_F(ListCommandsTest, AnotherProgramsDeletionMovesNoCommandToAnotherCall) {
  list.Select(3);
  world.Machine().calls.MarkAsReadUnRead(3, true);
  auto& records = world.database.Records();
  world.database.MoveTo(2);
  world.database.Delete();
  commands.MarkAsUnread();
  ASSERT_EQ(records.size(), 2U);
  EXPECT_EQ(world.database.Field(0, kRead), "0");
  EXPECT_EQ(list.Selected(), 2);
  EXPECT_TRUE(world.Logged("The call records have changed since they were shown: the list is read again"));
  world.database.MoveTo(1);
  world.database.Delete();
  commands.Delete();
  EXPECT_EQ(world.database.Field(0, kCallMassageName), "new.wav");
}

TEST_F(ListCommandsTest, AClickAfterAnotherProgramsDeletionActsOnTheCallThatWasSeen) {
  world.database.MoveTo(3);
  world.database.Delete();
  commands.ListView1_Selected(2);
  EXPECT_THAT(std::pair(list.Selected(), world.views.selection), testing::Pair(1, 1));
  world.database.MoveTo(2);
  world.database.Delete();
  commands.ListView1_Click(1);
  EXPECT_THAT(Icons(), ElementsAre(kUnreadMessage));
  commands.Delete();
  EXPECT_THAT(std::pair(list.Selected(), list.Count()), testing::Pair(0, 1))
      << "it is gone, and no other is meant";
  commands.Next();
  EXPECT_THAT(Icons(), ElementsAre(kReadMessage)) << "without a selection it leads to the first row";
  list.FollowSelection(0);
  player.Play();
  EXPECT_TRUE(player.IsPlaying());
  world.database.DeleteAll();
  world.mouse.down = {kRightButton};
  commands.ListView1_MouseDown();
  EXPECT_THAT(world.views.menus, IsEmpty());
}

/// Another program removes the newest call and adds one, which gets the identity of the removed one.
TEST_F(ListCommandsTest, NoCommandMeetsAnotherCallThatHasTheIdentity) {
  const auto newest = [&]() -> std::string& { return world.database.Records().back().at(0); };
  const auto replaced = [&] { newest() += "!"; };
  world.dialogs.while_open = replaced;
  world.dialogs.yes = true;
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
    ASSERT_THAT(std::pair(list.Count(), list.NewCalls()), testing::Pair(3, 3)) << step;
    EXPECT_EQ(world.views.rows[0].name, newest()) << step;
  }
}

TEST_F(ListCommandsTest, TheSelectionStaysOnItsCall) {
  list.Select(1);
  ACallComesIn();
  EXPECT_EQ(list.Selected(), 2);
  EXPECT_EQ(world.views.selection, 2);
  EXPECT_EQ(world.views.rebuilds, 2) << "cleared and filled at the start, not again";
  world.database.Records().clear();  // another program
  list.makeList();
  EXPECT_EQ(list.Selected(), 0);
  EXPECT_THAT(world.views.rows, IsEmpty());
}

TEST_F(ListCommandsTest, TheMenuIsForThePhysicalRightButton) {
  list.Select(1);
  commands.ListView1_MouseDown();
  EXPECT_THAT(world.views.menus, IsEmpty());
  world.mouse.down = {kRightButton};
  commands.ListView1_MouseDown();
  list.Select(2);
  commands.ListView1_MouseDown();
  EXPECT_THAT(world.views.menus, ElementsAre(true, false));
  world.mouse.swapped = true;
  commands.ListView1_MouseDown();
  EXPECT_EQ(world.views.menus.size(), 2U);
  world.mouse.down = {kLeftButton};
  commands.ListView1_MouseDown();
  EXPECT_EQ(world.views.menus.size(), 3U);
}

TEST_F(ListCommandsTest, TheDeskDoesNotDisturbAnOwnerWhoListensByTelephone) {
  world.AddMessage("newest.wav", 2s);
  list.makeList();
  list.Select(1);
  world.CallAndWaitForAnswer();
  world.RunFor(100ms);
  world.Press("4711*");
  ASSERT_TRUE(world.CurrentCall().remote_playback);
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
    world.Machine().status.ShowStatus("");
    move();
    EXPECT_EQ(world.views.selection, 2);
    EXPECT_EQ(world.views.Status(), "Messages are played to the telephone: the selection stays on them");
  }
  EXPECT_FALSE(player.Playing());
  world.Machine().calls.DeleteItemIndex(1);
  list.makeList();
  world.RunFor(9s);
  std::vector<std::string> heard;
  for (const auto& played : world.Wave1.played) heard.push_back(played.path.substr(world.messages.size()));
  heard.erase(heard.begin());  // the greeting
  EXPECT_THAT(heard, ElementsAre("newest.wav", "new.wav", "old.wav")) << "what he hears was deleted";
}

TEST_F(ListCommandsTest, ALongSearchForAMessageIsDoneBitByBit) {
  for (int call = 0; call < 35; ++call) world.AddCallWithoutMessage();
  list.makeList();
  list.Select(1);
  player.Play();
  EXPECT_FALSE(player.Playing()) << "other events first";
  world.RunFor(10ms);
  EXPECT_EQ(list.Selected(), 36);
  EXPECT_TRUE(player.Playing());
  EXPECT_EQ(list.NewCalls(), 2) << "the calls on the way are read, the rest is not";

  list.Select(1);
  world.Machine().calls.MarkAsReadUnRead(36, false);
  player.Play();
  player.PressStop();
  world.RunFor(10ms);
  EXPECT_EQ(list.Selected(), 1) << "a search that was stopped ends";
  player.Play();
  commands.ListView1_Click(2);
  world.RunFor(10ms);
  EXPECT_EQ(list.Selected(), 2) << "and so does one that the person has left";
  list.Select(1);
  for (auto& record : world.database.Records())
    record.at(std::size_t(world.database.FieldIndex(kRead))) = "0";
  list.makeList();
  player.Play();
  const auto read_so_far = list.NewCalls();
  world.window->Exit();
  world.RunFor(10ms);
  EXPECT_EQ(list.NewCalls(), read_so_far) << "nothing goes on after an exit";
}

TEST_F(ListCommandsTest, NothingToPlayStopsWhatPlays) {
  world.AddCallWithoutMessage();
  std::ranges::rotate(world.database.Records(), world.database.Records().end() - 1);
  list.makeList();
  list.Select(4);
  player.Play();
  EXPECT_FALSE(player.Playing());
  EXPECT_EQ(world.views.rows[3].icon, kReadNoMessage);
  list.Select(1);
  world.files.Delete(world.messages + "new.wav");
  EXPECT_THAT(world.LoggedBy([&] { player.Play(); }), ElementsAre("wave error 4"));
  EXPECT_FALSE(player.Playing());
}

TEST_F(ListCommandsTest, AListThatAnotherProgramEmptiedIsNoFault) {
  list.Select(1);
  player.Play();
  world.database.Records().clear();
  commands.Next();
  EXPECT_FALSE(player.IsPlaying());
  commands.Delete();
  player.Play();
  commands.MarkAsUnread();
  EXPECT_EQ(world.shell.icon.tip.substr(0, 24), std::string("ORVEN - Calls:0  New:0\0\0", 24));
}

TEST_F(ListCommandsTest, ThePictureIsTheSelectedMessages) {
  list.Select(3);
  EXPECT_EQ(world.waveforms.path, world.messages + "old.wav");
  world.waveforms.done({{0.5F}, 4s});
  EXPECT_EQ(world.views.waveform.peaks.size(), 1U);
  list.Select(2);
  EXPECT_EQ(world.waveforms.path, "");
  EXPECT_THAT(world.views.waveform.peaks, IsEmpty());
}

}  // namespace
}  // namespace orven::test
