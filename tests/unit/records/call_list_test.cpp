// SPDX-License-Identifier: GPL-3.0-or-later
// The list of calls, what a person does with it, and the player.
#include <gmock/gmock.h>

#include <algorithm>

#include "base/runtime_error.h"
#include "support/world.h"

namespace orven::test {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::StartsWith;

/// From the top: new.wav, a call without a message, old.wav; nothing is asked before deleting.
class CallListTest : public testing::Test, public World {
 protected:
  CallListTest() {
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
  /// A call is over that could not be filed and whose message could not be stored.
  void ACallFindsNoRoom() {
    database_full = true;
    Wave1.stop_result = kWaveDiskFull;
    CallAndWaitForRecording();
    HangUp();
    RunFor(30s);
  }
  /// Another program deletes a record.
  void DeleteRecord(std::int32_t number) {
    database.MoveTo(number);
    database.Delete();
  }
  void Click(std::int32_t row) {
    views.selection = row;  // what a person does in the list shows there first
    commands.ListView1_Click(row);
  }
  /// The icons that the window shows, a star before the selected one.
  std::string Shown() {
    EXPECT_EQ(views.selection, list.Selected());
    std::string shown;
    for (std::int32_t row = 1; row <= static_cast<std::int32_t>(views.rows.size()); ++row)
      shown += (row == views.selection ? "*" : "") + std::to_string(views.ShownCall(row).icon);
    return shown;
  }

  CallStore& store = Machine().calls;
  CallList& list = Machine().ListView1;
  ListCommands& commands = Machine().list_commands;
  LocalPlayer& player = Machine().player;
};

TEST_F(CallListTest, MarksReadAndUnreadOnce) {
  store.MarkAsReadUnRead(1, true);
  store.MarkAsReadUnRead(2, true);
  EXPECT_EQ(Shown(), "*341");
  EXPECT_THAT(database.Records()[2], ElementsAre("Anna", "", "", "", "new.wav", "1", "1"));
  EXPECT_EQ(list.NewCalls(), 1);
  const int writes = database.writes;
  store.MarkAsReadUnRead(1, true);
  EXPECT_EQ(database.writes, writes) << "already read";
  store.MarkAsReadUnRead(2, false);
  EXPECT_EQ(Shown(), "*311") << "until the list is built again";
  EXPECT_EQ(list.NewCalls(), 2);
  list.makeList();
  EXPECT_EQ(Shown(), "*321");
}

TEST_F(CallListTest, AClickReadsACallWithoutAMessageOnlyAndStopsThePlayer) {
  Click(1);
  Click(2);
  EXPECT_EQ(Shown(), "1*41");
  Click(1);
  commands.ListView1_DblClick();
  RunFor(1s);
  EXPECT_EQ(views.slider, 50);
  Click(3);
  EXPECT_FALSE(player.Playing() || player.IsPlaying());
  EXPECT_EQ(views.slider, 0);
  EXPECT_EQ(Shown(), "34*1");
}

TEST_F(CallListTest, DeletingTakesTheMessageFileAlong) {
  player.Play();
  store.DeleteItemIndex(1);
  EXPECT_FALSE(player.IsPlaying()) << "the player held it";
  store.DeleteItemIndex(1);  // without a message
  EXPECT_THAT(files.Names(messages), ElementsAre("old.wav"));
  files.Delete(messages + "old.wav");
  store.DeleteItemIndex(1);
  EXPECT_THAT(database.Records(), IsEmpty()) << "the record goes although the file is missing";
  EXPECT_TRUE(Logged("ErrDeleteItemIndex 53 File not found"));
}

TEST_F(CallListTest, TheSelectionAfterARemoval) {
  for (const auto& [selected, removed, shown, key] :
       {std::tuple(1, 1, "*11", "b"), {1, 3, "*11", "a"}, {3, 1, "1*1", "c"}, {3, 3, "1*1", "b"}}) {
    SCOPED_TRACE(std::to_string(selected) + " " + std::to_string(removed));
    database.Records().clear();
    for (const char* name : {"c", "b", "a"}) AddMessage(name, 1s);
    list.makeList();
    list.Select(selected);
    int changes = 0;
    list.SetSelectionListener([&] { ++changes; });
    store.DeleteItemIndex(removed);
    EXPECT_EQ(Shown(), shown);
    EXPECT_EQ(changes, selected == removed ? 1 : 0);
    EXPECT_TRUE(list.SelectionStands()) << "it knows which call that is";
    EXPECT_EQ(list.Row(list.Selected()).key, key);
  }
}

TEST_F(CallListTest, AMessageStaysForARecordThatCannotBeDeletedAndForAnotherCallThatHasIt) {
  database_full = true;
  EXPECT_THAT(LoggedBy([&] { store.DeleteItemIndex(1); }), ElementsAre("ErrDeleteItemIndex 61 Disk full"));
  EXPECT_TRUE(files.Exists(messages + "new.wav"));
  EXPECT_EQ(list.Count(), 3);
  database_full = false;
  AddMessage("new.wav", 1s);  // in the same second
  list.makeList();
  for (const bool kept : {true, false}) {
    store.DeleteItemIndex(1);
    EXPECT_EQ(files.Exists(messages + "new.wav"), kept);
    EXPECT_TRUE(Logged("Another call has the message new.wav, which is kept"));
  }
}

TEST_F(CallListTest, SavesACopyWhereThePersonWantsIt) {
  dialogs.save_as = "/home/me/copy.wav";
  store.SaveFile(messages + "new.wav");
  EXPECT_EQ(dialogs.save_title + dialogs.save_name, "Savenew.wav");
  EXPECT_EQ(dialogs.save_filter, std::string("wav (*.wav)\0*.wav\0", 18));
  EXPECT_EQ(files.Content("/home/me/copy.wav"), TimedWave::Sound(2s));
  dialogs.save_as.reset();
  EXPECT_THAT(LoggedBy([&] { store.SaveFile(messages + "old.wav"); }), IsEmpty());
}

TEST_F(CallListTest, RoomThatComesBackIsNoticedWithoutAnotherCall) {
  ACallFindsNoRoom();
  EXPECT_THAT(SystemLog(), Contains(StartsWith("ErrPut")).Times(1));
  database_full = false;
  RunFor(5s);
  ASSERT_EQ(views.rows.size(), 4U);
  EXPECT_EQ(views.rows[0].length, "") << "its message still waits";
  const auto path = Wave1.last_recorded_path;
  AddMessage(path.substr(messages.size()), 2s);
  RunFor(5s);
  EXPECT_EQ(database.Field(3, kType), "-1") << "what has its name is another call's";
  database.Records().pop_back();
  files.Put(path, TimedWave::Sound(3s));
  RunFor(5s);
  EXPECT_EQ(list.Row(1).length + messages + list.Row(1).key, "3" + path);
  EXPECT_EQ(database.Records().size(), 4U);
}

TEST_F(CallListTest, AMessageThatFindsRoomBeforeItsCallIsFiledWithItOnceItCanMove) {
  for (const bool moves : {false, true}) {
    ACallFindsNoRoom();
    files.Put(Wave1.last_recorded_path, TimedWave::Sound(3s));
    if (moves) {
      shared.messages_path = "/home/other/";
      files.before_write = [](const std::string& path) {
        if (path.starts_with("/home/other/")) throw RuntimeError(ErrorNumber::PermissionDenied, path);
      };
    }
    database_full = false;
    store.FileWaitingCalls();
    EXPECT_EQ(database.Records().back()[5], moves ? "-1" : "3");
  }
  files.before_write = [](const std::string&) {};
  RunFor(5s);
  ASSERT_EQ(database.Records().size(), 5U);
  EXPECT_EQ(database.Field(4, kType), "3");
  EXPECT_TRUE(files.Exists("/home/other/" + database.Field(4, kCallMassageName)));
}

TEST_F(CallListTest, DeletesTheCallThatWasMeant) {
  AskFirst();
  list.Select(2);
  commands.Delete();
  EXPECT_THAT(dialogs.questions, ElementsAre("Delete Call 2 Information ?"));
  EXPECT_EQ(list.Count(), 3) << "the answer was No";
  dialogs.yes = true;
  dialogs.while_open = [&] { ACallComesIn(); };
  commands.Delete();
  EXPECT_EQ(Shown(), "21*1") << "the new call is there, and what took the place is selected";
  EXPECT_EQ(views.rows[1].key + views.rows[2].key, "new.wavold.wav");
}

TEST_F(CallListTest, ClearKeepsTheFilesAndACallThatCameMeanwhile) {
  AskFirst();
  player.Play();
  dialogs.yes = true;
  dialogs.while_open = [&] { ACallComesIn(); };
  commands.Clear();
  EXPECT_FALSE(player.IsPlaying());
  EXPECT_EQ(Shown(), "*2");
  EXPECT_EQ(database.Field(0, kCallName), "UNKNOWN");
  EXPECT_EQ(files.Names(messages).size(), 2U);
  dialogs.while_open = [] {};
  commands.Clear();
  EXPECT_THAT(database.Records(), IsEmpty());
  EXPECT_EQ(list.Total() + list.NewCalls(), 0);
  commands.Clear();
  commands.Delete();
  EXPECT_EQ(dialogs.questions.size(), 2U) << "an empty list asks nothing";
}

TEST_F(CallListTest, AnotherProgramsDeletionMovesNoCommandToAnotherCall) {
  list.Select(3);
  store.MarkAsReadUnRead(3, true);
  DeleteRecord(2);
  commands.MarkAsUnread();
  EXPECT_EQ(Shown(), "1*1");
  EXPECT_TRUE(Logged("The call records have changed since they were shown: the list is read again"));
}

TEST_F(CallListTest, AClickAfterAnotherProgramsDeletionActsOnTheCallThatWasSeen) {
  DeleteRecord(3);
  commands.ListView1_Selected(2);
  EXPECT_EQ(Shown(), "*21");
  DeleteRecord(2);
  Click(1);
  commands.Delete();
  EXPECT_EQ(Shown(), "1") << "it is gone, and no other is meant";
  commands.Next();
  EXPECT_EQ(Shown(), "*3") << "without a selection it leads to the first row";
  list.FollowSelection(0);
  player.Play();
  EXPECT_TRUE(player.IsPlaying());
  database.DeleteAll();
  mouse.down = {kRightButton};
  commands.ListView1_MouseDown();
  EXPECT_THAT(views.menus, IsEmpty());
}

/// Another program removes the newest call and adds one, which gets the identity of the removed one.
TEST_F(CallListTest, NoCommandMeetsAnotherCallThatHasTheIdentity) {
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
    ASSERT_EQ(list.Count() + list.NewCalls(), 6) << step;
    EXPECT_EQ(views.rows[0].name, newest()) << step;
  }
}

TEST_F(CallListTest, TheSelectionStaysOnItsCallAndAListThatIsEmptiedHasNone) {
  ACallComesIn();
  EXPECT_EQ(Shown(), "2*121");
  EXPECT_EQ(views.rebuilds, 2) << "cleared and filled at the start, not again";
  player.Play();
  database.Records().clear();  // another program
  commands.Next();
  EXPECT_FALSE(player.IsPlaying());
  commands.Delete();
  player.Play();
  commands.MarkAsUnread();
  EXPECT_EQ(list.Selected(), 0);
  EXPECT_EQ(Shown(), "");
}

TEST_F(CallListTest, TheMenuIsForThePhysicalRightButton) {
  for (const auto& [row, down, swapped] : {std::tuple(1, kLeftButton, false),
                                           {1, kRightButton, false},
                                           {2, kRightButton, false},
                                           {1, kRightButton, true},
                                           {1, kLeftButton, true}}) {
    list.Select(row);
    mouse.down = {down};
    mouse.swapped = swapped;
    commands.ListView1_MouseDown();
  }
  EXPECT_THAT(views.menus, ElementsAre(true, false, true)) << "with a message, without, with";
}

TEST_F(CallListTest, TheDeskDoesNotDisturbAnOwnerWhoListensByTelephone) {
  AddMessage("newest.wav", 2s);
  list.makeList();
  CallAndWaitForAnswer();
  RunFor(100ms);
  Press("4711*");
  list.Select(2);  // whatever moves it
  const std::function<void()> moves[] = {[&] { Click(3); }, [&] { commands.First(); },
                                         [&] { commands.Last(); }, [&] { commands.Next(); },
                                         [&] { player.Play(); }};
  for (const auto& move : moves) {
    Machine().status.ShowStatus("");
    move();
    EXPECT_EQ(Shown(), "1*121");
    EXPECT_EQ(views.Status(), "Messages are played to the telephone: the selection stays on them");
  }
  EXPECT_FALSE(player.Playing());
  store.DeleteItemIndex(1);
  list.makeList();
  RunFor(9s);
  EXPECT_EQ(Wave1.played.size(), 4U) << "the greeting and every message; what he was hearing was deleted";
}

TEST_F(CallListTest, ALongSearchForAMessageLetsOtherEventsRunAndEndsWhenItIsStopped) {
  for (int call = 0; call < 35; ++call) AddCallWithoutMessage();
  list.makeList();
  list.Select(1);
  player.Play();
  EXPECT_FALSE(player.Playing()) << "other events first";
  RunFor(10ms);
  EXPECT_EQ(list.Selected(), 36);
  EXPECT_TRUE(player.Playing());
  EXPECT_EQ(list.NewCalls(), 2) << "the calls on the way are read, the rest is not";
  const std::pair<std::int32_t, std::function<void()>> ends[] = {
      {1, [&] { player.PressStop(); }}, {2, [&] { Click(2); }}, {1, [&] { window->Exit(); }}};
  for (const auto& [selected, end] : ends) {
    list.Select(1);
    player.Play();
    end();
    RunFor(10ms);
    EXPECT_EQ(list.Selected(), selected);
    EXPECT_FALSE(player.Playing());
  }
}

TEST_F(CallListTest, NothingToPlayStopsWhatPlays) {
  AddCallWithoutMessage();
  std::ranges::rotate(database.Records(), database.Records().end() - 1);
  list.makeList();
  player.Play();
  commands.Last();
  player.Play();
  EXPECT_FALSE(player.Playing() || player.IsPlaying());
  EXPECT_EQ(Shown(), "321*4");
  list.Select(1);
  files.Delete(messages + "new.wav");
  EXPECT_THAT(LoggedBy([&] { player.Play(); }), ElementsAre("wave error 4"));
  EXPECT_FALSE(player.Playing());
}

TEST_F(CallListTest, ThePictureIsTheSelectedMessages) {
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
