// SPDX-License-Identifier: GPL-3.0-or-later
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

/// From the top: new.wav, a call without a message, old.wav.
class CallStoreTest : public testing::Test, public World {
 protected:
  CallStoreTest() {
    AddMessage("old.wav", 1s);
    AddCallWithoutMessage();
    AddMessage("new.wav", 1s);
    Start();
  }
  std::vector<CallIcon> Icons() {
    std::vector<CallIcon> icons;
    for (const auto& row : views.rows) icons.push_back(row.icon);
    return icons;
  }
  void CallFrom(const std::string& name) {
    line->Offer();
    line->CallerId(name, "1");
    RunFor(10ms);
    HangUp();
  }
  /// A call is over that could not be filed and whose message could not be stored.
  void CallWithoutRoom() {
    database_full = true;
    Wave1.stop_result = kWaveDiskFull;
    CallAndWaitForRecording();
    HangUp();
    RunFor(30s);
  }

  CallStore& store = Machine().calls;
  CallList& list = Machine().ListView1;
};

TEST_F(CallStoreTest, MarksReadAndUnreadOnce) {
  EXPECT_THAT(Icons(), ElementsAre(kUnreadMessage, kUnreadNoMessage, kUnreadMessage));
  store.MarkAsReadUnRead(1, true);
  store.MarkAsReadUnRead(2, true);
  EXPECT_THAT(Icons(), ElementsAre(kReadMessage, kReadNoMessage, kUnreadMessage));
  EXPECT_THAT(database.Records()[2], ElementsAre("Anna", "", "", "", "new.wav", "1", "1"));
  EXPECT_EQ(list.NewCalls(), 1);
  const int writes = database.writes;
  store.MarkAsReadUnRead(1, true);
  EXPECT_EQ(database.writes, writes) << "already read";
  store.MarkAsReadUnRead(2, false);
  EXPECT_EQ(Icons()[1], kUnreadMessage) << "until the list is built again";
  EXPECT_EQ(list.NewCalls(), 2);
  list.makeList();
  EXPECT_EQ(Icons()[1], kUnreadNoMessage);
}

TEST_F(CallStoreTest, DeletingTakesTheMessageFileAlong) {
  list.Select(1);
  Machine().player.Play();
  store.DeleteItemIndex(1);
  EXPECT_FALSE(Machine().player.IsPlaying()) << "the player held it";
  store.DeleteItemIndex(1);  // without a message
  EXPECT_THAT(files.Names(messages), ElementsAre("old.wav"));
  files.Delete(messages + "old.wav");
  store.DeleteItemIndex(1);
  EXPECT_THAT(database.Records(), IsEmpty()) << "the record goes although the file is missing";
  EXPECT_TRUE(Logged("ErrDeleteItemIndex 53 File not found"));
}

TEST_F(CallStoreTest, TheSelectionAfterARemoval) {
  struct Case {
    std::int32_t selected, removed, then;
    const char* key;
  };
  for (const auto& [selected, removed, then, key] :
       {Case{1, 1, 1, "b"}, Case{1, 3, 1, "a"}, Case{3, 1, 2, "c"}, Case{3, 3, 2, "b"}, Case{2, 2, 2, "c"},
        Case{2, 3, 2, "b"}}) {
    SCOPED_TRACE(std::to_string(selected) + " " + std::to_string(removed));
    database.Records().clear();
    for (const char* name : {"c", "b", "a"}) AddMessage(name, 1s);
    list.makeList();
    list.Select(selected);
    int changes = 0;
    list.SetSelectionListener([&] { ++changes; });
    store.DeleteItemIndex(removed);
    EXPECT_EQ(list.Selected(), then);
    EXPECT_EQ(views.selection, then);
    EXPECT_EQ(changes, selected == removed ? 1 : 0);
    EXPECT_TRUE(list.SelectionStands()) << "it knows which call that is";
    EXPECT_EQ(list.Row(then).key, key);
  }
}

TEST_F(CallStoreTest, AMessageThatAnotherCallHasIsKept) {
  AddMessage("new.wav", 1s);  // in the same second
  list.makeList();
  for (const bool kept : {true, false}) {
    store.DeleteItemIndex(1);
    EXPECT_EQ(files.Exists(messages + "new.wav"), kept);
    EXPECT_TRUE(Logged("Another call has the message new.wav, which is kept"));
  }
}

TEST_F(CallStoreTest, ARecordThatCannotBeDeletedKeepsItsMessageAndItsRow) {
  database_full = true;
  EXPECT_THAT(LoggedBy([&] { store.DeleteItemIndex(1); }), ElementsAre("ErrDeleteItemIndex 61 Disk full"));
  EXPECT_TRUE(files.Exists(messages + "new.wav"));
  EXPECT_EQ(list.Count(), 3);
}

TEST_F(CallStoreTest, SavesACopyWhereThePersonWantsIt) {
  dialogs.save_as = "/home/me/copy.wav";
  store.SaveFile(messages + "new.wav");
  EXPECT_EQ(dialogs.save_title + dialogs.save_name, "Savenew.wav");
  EXPECT_EQ(dialogs.save_filter, std::string("wav (*.wav)\0*.wav\0", 18));
  EXPECT_EQ(files.Content("/home/me/copy.wav"), TimedWave::Sound(1s));
  EXPECT_TRUE(files.Exists(messages + "new.wav"));
  dialogs.save_as.reset();
  EXPECT_THAT(LoggedBy([&] { store.SaveFile(messages + "old.wav"); }), IsEmpty());
}

TEST_F(CallStoreTest, ACallThatCannotBeFiledIsFiledBeforeTheNextOrWhenTheProgramEnds) {
  database_full = true;
  CallFrom("Carl");
  EXPECT_TRUE(Logged("ErrPutCallDetailsInDB 61 Disk full"));
  EXPECT_EQ(CallsLog().back(), "Ring: [Carl:1]");
  database_full = false;
  CallFrom("Dora");
  database_full = true;
  CallFrom("Emil");
  database_full = false;
  window->Exit();
  std::string names;
  for (const auto& record : database.Records()) names += record[0] + " ";
  EXPECT_EQ(names, "Anna Ben Anna Carl Dora Emil ");
}

TEST_F(CallStoreTest, RoomThatComesBackIsNoticedWithoutAnotherCall) {
  CallWithoutRoom();
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
  EXPECT_EQ(list.Row(1).length, "3");
  EXPECT_EQ(messages + list.Row(1).key, path);
  EXPECT_EQ(database.Records().size(), 4U);
}

TEST_F(CallStoreTest, AMessageThatFindsRoomBeforeItsCallIsFiledWithItOnceItCanMove) {
  for (const bool moves : {false, true}) {
    CallWithoutRoom();
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

}  // namespace
}  // namespace orven::test
