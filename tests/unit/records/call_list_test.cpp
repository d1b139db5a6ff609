// SPDX-License-Identifier: GPL-3.0-or-later
// The call list, its commands, and the player.
#include <gmock/gmock.h>

#include <map>
#include <sstream>

#include "base/runtime_error.h"
#include "support/world.h"

namespace orven::test {
namespace {

using testing::ElementsAre;

/// The list from the top: new.wav, a call without a message, old.wav. Deleting asks for no confirmation.
struct CallListTest : testing::Test, World {
  CallListTest() {
    AddMessage("old.wav", 4s);
    AddCallWithoutMessage();
    AddMessage("new.wav", 2s);
    registry.Set("WornDelete", "0");
    registry.Set("WornClear", "0");
    Start();
    RunFor(1s);  // until the beep has ended
  }
  void TestBody() override {}
  /// Plays a call that cannot be filed and whose message cannot be stored.
  void ACallFindsNoRoom() {
    database_full = true;
    Wave1.stop_result = kWaveDiskFull;
    CallAndWaitForRecording();
    HangUp();
    RunFor(30s);
  }
  /// Performs steps such as "select 3; delete".
  void Do(const std::string& script) {
    std::istringstream steps(script);
    for (std::string step; std::getline(steps >> std::ws, step, ';');) {
      std::istringstream words(step);
      std::string what, with;
      std::getline(words >> what >> std::ws, with);
      Do(what, with);
    }
  }
  void Do(const std::string& what, const std::string& with) {
    const auto number = std::atoi(with.c_str());
    const std::map<std::string, std::function<void()>> steps{
        {"select", [&] { list.Select(number); }},
        {"click", [&] { views.selection = number, commands.ListView1_Click(number); }},
        {"arrow", [&] { views.selection = number, commands.ListView1_Selected(number); }},
        {"double", [&] { commands.ListView1_DblClick(); }},
        {"first", [&] { commands.First(); }},
        {"last", [&] { commands.Last(); }},
        {"next", [&] { commands.Next(); }},
        {"back", [&] { commands.Back(); }},
        {"read", [&] { commands.MarkAsRead(); }},
        {"unread", [&] { commands.MarkAsUnread(); }},
        {"play", [&] { player.Play(); }},
        {"stop", [&] { player.PressStop(); }},
        {"exit", [&] { window->Exit(); }},
        {"delete", [&] { commands.Delete(); }},
        {"remove", [&] { store.DeleteItemIndex(number); }},
        {"clear", [&] { commands.Clear(); }},
        {"list", [&] { list.makeList(); }},
        {"call", [&] { line->Offer(), RunFor(10ms), HangUp(); }},
        // Another program deletes a record, or replaces the newest by another call with the same identity.
        {"gone", [&] { database.Remove(database.Identity(number)); }},
        {"replaced", [&] { database.Records().back()[0] += "!"; }},
        {"asked", [&] {
           Machine().settings.WornDelete = Machine().settings.WornClear = 1;
           dialogs.yes = true;
           dialogs.while_open = [this, with] { Do(with); };
         }}};
    steps.at(what)();
  }
  /// The rows' icons, with a star before the selected one, then the file whose waveform is shown.
  std::string Shown() {
    EXPECT_EQ(views.selection, list.Selected());
    EXPECT_EQ(list.Count(), static_cast<std::int32_t>(database.Records().size()));
    std::string shown;
    for (std::int32_t row = 1; row <= static_cast<std::int32_t>(views.rows.size()); ++row) {
      EXPECT_EQ(views.ShownCall(row).name, list.Row(row).name);
      shown += (row == views.selection ? "*" : "") + std::to_string(views.ShownCall(row).icon);
    }
    shown += " " + waveforms.path.substr(waveforms.path.rfind('/') + 1);
    EXPECT_EQ(player.Playing(), WavePlay.IsPlaying());
    return player.Playing() ? shown + " plays" : shown;
  }

  CallStore& store = Machine().calls;
  CallList& list = Machine().ListView1;
  ListCommands& commands = Machine().list_commands;
  LocalPlayer& player = Machine().player;
};

TEST(CallListSteps, TheWindowShowsTheResult) {
  struct Case {
    const char *steps, *shown;
  };
  for (const auto& [steps, shown] : {
           Case{"read; select 2; read", "3*41 "},
           Case{"select 2; read; unread", "1*11 "},  // has a message icon until the list is rebuilt
           Case{"select 2; read; unread; list", "1*21 "},
           Case{"click 1; click 2; click 3", "14*1 old.wav"},
           Case{"click 1; double; click 3", "32*1 old.wav"},
           Case{"double; arrow 2", "3*21 "},
           Case{"double; last", "32*1 old.wav"},
           Case{"last; first", "*121 new.wav"},
           Case{"last; back", "1*41 "},
           Case{"next; next; next", "14*3 old.wav"},
           Case{"play; delete", "*21 "},
           Case{"select 2; delete", "1*1 old.wav"},
           Case{"last; delete", "1*2 "},
           Case{"last; remove 1", "2*1 old.wav"},
           Case{"call", "2*121 new.wav"},
           Case{"select 2; asked call; delete", "21*1 old.wav"},
           Case{"play; asked call; clear", "*2 "},
           // The last call has no message: nothing is found, and the message being played stops.
           Case{"gone 1; list; play; last; play", "3*4 "},
           // Another program has deleted calls: a step affects only the call that was shown.
           Case{"last; read; gone 2; unread", "1*1 old.wav"},
           Case{"gone 3; arrow 2", "*21 "},
           Case{"gone 3; gone 2; click 1; delete", "1 "},
           Case{"gone 3; gone 2; click 1; next", "*3 old.wav"},
           Case{"gone 3; gone 2; click 1; play", "*3 old.wav plays"},
           Case{"play; gone 3; gone 2; gone 1; next; delete; play; unread", " "},
           Case{"replaced; delete", "*121 new.wav"},
           Case{"asked replaced; clear", "*121 new.wav"},
           Case{"replaced; read", "*121 new.wav"},
           Case{"replaced; play", "*121 new.wav"},
       }) {
    CallListTest world;
    world.Do(steps);
    EXPECT_EQ(world.Shown(), shown) << steps;
  }
}

TEST_F(CallListTest, DeletingACallDeletesItsMessageFile) {
  Do("delete; delete");  // the second call has no message
  EXPECT_THAT(files.Names(messages), ElementsAre("old.wav"));
  files.Delete(messages + "old.wav");
  Do("delete");
  EXPECT_THAT(database.Records(), testing::IsEmpty()) << "the record is deleted although the file is missing";
  EXPECT_TRUE(Logged("ErrDeleteItemIndex 53 File not found"));
}

TEST_F(CallListTest, AMessageIsKeptIfItsRecordCannotBeDeletedOrAnotherCallUsesItAndByClear) {
  database_full = true;
  EXPECT_THAT(LoggedBy([&] { store.DeleteItemIndex(1); }), ElementsAre("ErrDeleteItemIndex 61 Disk full"));
  EXPECT_TRUE(files.Exists(messages + "new.wav"));
  EXPECT_EQ(list.Count(), 3);
  database_full = false;
  AddMessage("new.wav", 1s);  // a call of the same second
  list.makeList();
  for (const bool kept : {true, false}) {
    store.DeleteItemIndex(1);
    EXPECT_EQ(files.Exists(messages + "new.wav"), kept);
    EXPECT_TRUE(Logged("Another call has the message new.wav, which is kept"));
  }
  Do("clear; asked; clear; delete");
  EXPECT_TRUE(files.Exists(messages + "old.wav"));
  EXPECT_THAT(dialogs.questions, testing::IsEmpty()) << "an empty list asks nothing";
}

TEST_F(CallListTest, RoomThatComesBackIsNoticedWithoutAnotherCall) {
  ACallFindsNoRoom();
  EXPECT_THAT(SystemLog(), testing::Contains(testing::StartsWith("ErrPut")).Times(1));
  database_full = false;
  RunFor(5s);
  ASSERT_EQ(views.rows.size(), 4U);
  EXPECT_EQ(views.rows[0].length, "") << "its message is still waiting";
  const auto path = Wave1.last_recorded_path;
  AddMessage(path.substr(messages.size()), 2s);
  RunFor(5s);
  EXPECT_EQ(database.Field(3, kType), "-1") << "the file with that name is another call's message";
  database.Records().pop_back();
  files.Put(path, TimedWave::Sound(3s));
  RunFor(5s);
  EXPECT_EQ(list.Row(1).length + messages + list.Row(1).key, "3" + path);
  EXPECT_EQ(database.Records().size(), 4U);
}

TEST_F(CallListTest, AMessageStoredBeforeItsCallIsFiledWithItOnceItCanBeMoved) {
  for (const bool moves : {false, true}) {
    ACallFindsNoRoom();
    files.Put(Wave1.last_recorded_path, TimedWave::Sound(3s));
    if (moves) {
      Machine().folders.Moved("/home/other/");
      files.before_write = [](const std::string& path) {
        if (path.starts_with("/home/other/")) throw RuntimeError(ErrorNumber::PermissionDenied, path);
      };
    }
    database_full = false;
    Machine().filing.FileWaitingCalls();
    EXPECT_EQ(database.Records().back()[5], moves ? "-1" : "3");
  }
  files.before_write = [](const std::string&) {};
  RunFor(5s);
  EXPECT_EQ(database.Field(4, kType), "3");
  EXPECT_TRUE(files.Exists("/home/other/" + database.Field(4, kCallMassageName)));
}

TEST_F(CallListTest, ANewCallOrADeletionByAnotherProgramBuildsTheListAgainOnlyWhenNeeded) {
  Do("call");
  EXPECT_EQ(views.rebuilds, 2) << "the list was cleared and filled at the start";
  Do("gone 1; next");
  EXPECT_EQ(views.rebuilds, 3);
  EXPECT_TRUE(Logged("The call records have changed since they were shown: the list is read again"));
}

TEST_F(CallListTest, TheSliderFollowsTheMessage) {
  player.Play();
  RunFor(1s);
  EXPECT_EQ(views.slider, 50);
  player.Stop();
  EXPECT_EQ(views.slider, 0);
  files.Delete(messages + "new.wav");
  EXPECT_THAT(LoggedBy([&] { player.Play(); }), ElementsAre("wave error 4"));
  EXPECT_FALSE(player.Playing());
}

TEST_F(CallListTest, TheMenuIsForThePhysicalRightButton) {
  mouse.swapped = true;
  for (const auto button : {kRightButton, kLeftButton}) {
    mouse.down = {button};
    commands.ListView1_MouseDown();
  }
  database.DeleteAll();
  commands.ListView1_MouseDown();
  EXPECT_THAT(views.menus, ElementsAre(true));
}

TEST_F(CallListTest, TheWindowDoesNotDisturbAnOwnerWhoListensByTelephone) {
  AddMessage("newest.wav", 2s);
  list.makeList();
  CallAndWaitForAnswer();
  RunFor(100ms);
  Press("4711*");
  list.Select(2);  // as if something had moved the selection
  for (const char* move : {"click 3", "first", "last", "next", "play"}) {
    Machine().status.ShowStatus({});
    Do(move);
    EXPECT_EQ(Shown().substr(0, 5), "1*121");
    EXPECT_EQ(views.Status(), "Messages are played to the telephone: the selection stays on them");
  }
  EXPECT_FALSE(player.Playing());
  store.DeleteItemIndex(1);
  list.makeList();
  RunFor(9s);
  EXPECT_EQ(Wave1.played.size(), 4U) << "the greeting and every message, even the one deleted while playing";
}

TEST_F(CallListTest, ALongSearchForAMessageLetsOtherEventsRunAndEndsWhenItIsStopped) {
  for (int call = 0; call < 35; ++call) AddCallWithoutMessage();
  list.makeList();
  list.Select(1);
  player.Play();
  EXPECT_FALSE(player.Playing()) << "other events run first";
  RunFor(10ms);
  EXPECT_EQ(list.Selected(), 36);
  EXPECT_TRUE(player.Playing());
  EXPECT_EQ(list.NewCalls(), 2) << "only the calls that were passed are marked as read";
  for (const auto& [end, selected] : {std::pair("stop", 1), {"click 2", 2}, {"exit", 1}}) {
    list.Select(1);
    player.Play();
    Do(end);
    RunFor(10ms);
    EXPECT_EQ(list.Selected(), selected);
    EXPECT_FALSE(player.Playing());
  }
}

}  // namespace
}  // namespace orven::test
