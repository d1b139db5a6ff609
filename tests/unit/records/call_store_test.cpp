// SPDX-License-Identifier: GPL-3.0-or-later
#include <gmock/gmock.h>

#include <algorithm>

#include "base/runtime_error.h"
#include "records/call.h"
#include "support/world.h"

namespace orven::test {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

class CallStoreTest : public testing::Test {
 protected:
  void SetUp() override {
    world.AddMessage("old.wav", 1s);
    world.AddCallWithoutMessage();
    world.AddMessage("new.wav", 1s);
    world.Start();
  }
  CallStore& Store() { return world.Machine().calls; }
  std::vector<CallIcon> Icons() {
    std::vector<CallIcon> icons;
    for (const auto& row : world.views.rows) icons.push_back(row.icon);
    return icons;
  }

  World world;
};

TEST_F(CallStoreTest, ShowsTheNewestCallFirst) {
  ASSERT_EQ(world.views.rows.size(), 3U);
  EXPECT_EQ(world.views.rows[0].key, "new.wav");
  EXPECT_EQ(world.views.rows[0].length, "1");
  EXPECT_EQ(world.views.rows[1].key, "") << "a prepared name is no key";
  EXPECT_EQ(world.views.rows[1].length, "");
  EXPECT_EQ(world.views.rows[2].name, "Anna");
  EXPECT_THAT(Icons(), ElementsAre(kUnreadMessage, kUnreadNoMessage, kUnreadMessage));
  EXPECT_EQ(world.Machine().ListView1.Total(), 3);
  EXPECT_EQ(world.Machine().ListView1.NewCalls(), 3);
  EXPECT_EQ(world.database.opened_path, "/home/orven/Calls");
}

TEST_F(CallStoreTest, MarksReadAndUnreadOnce) {
  Store().MarkAsReadUnRead(1, true);
  Store().MarkAsReadUnRead(2, true);
  EXPECT_THAT(Icons(), ElementsAre(kReadMessage, kReadNoMessage, kUnreadMessage));
  EXPECT_EQ(world.database.Field(2, kRead), "1");
  EXPECT_EQ(world.database.Field(2, kCallMassageName), "new.wav");
  EXPECT_EQ(world.Machine().ListView1.NewCalls(), 1);
  const int writes = world.database.writes;
  Store().MarkAsReadUnRead(1, true);
  EXPECT_EQ(world.database.writes, writes) << "already read";
  Store().MarkAsReadUnRead(2, false);
  EXPECT_EQ(Icons()[1], kUnreadMessage) << "until the next rebuild";
  EXPECT_EQ(world.Machine().ListView1.NewCalls(), 2);
  world.Machine().ListView1.makeList();
  EXPECT_EQ(Icons()[1], kUnreadNoMessage);
}

TEST_F(CallStoreTest, DeletingTakesTheMessageFileAlong) {
  world.Machine().ListView1.Select(1);
  world.Machine().player.Play();
  Store().DeleteItemIndex(1);
  EXPECT_FALSE(world.Machine().player.IsPlaying()) << "the player held it";
  EXPECT_THAT(world.files.Names(world.messages), ElementsAre("old.wav"));
  EXPECT_EQ(world.database.Records().size(), 2U);
  world.Machine().ListView1.makeList();
  Store().DeleteItemIndex(1);  // without a message
  EXPECT_THAT(world.files.Names(world.messages), ElementsAre("old.wav"));

  world.Machine().ListView1.makeList();
  world.files.Delete(world.messages + "old.wav");
  Store().DeleteItemIndex(1);
  EXPECT_THAT(world.database.Records(), IsEmpty()) << "the record goes although the file is missing";
  EXPECT_THAT(world.SystemLog(), Contains("ErrDeleteItemIndex 53 File not found"));
}

TEST_F(CallStoreTest, AMessageThatAnotherCallHasIsKept) {
  world.AddMessage("new.wav", 1s);  // in the same second
  world.Machine().ListView1.makeList();
  Store().DeleteItemIndex(1);
  EXPECT_TRUE(world.files.Exists(world.messages + "new.wav"));
  EXPECT_TRUE(world.Logged("Another call has the message new.wav, which is kept"));
  world.Machine().ListView1.makeList();
  Store().DeleteItemIndex(1);
  EXPECT_FALSE(world.files.Exists(world.messages + "new.wav")) << "nobody else has it now";
}

TEST_F(CallStoreTest, ARecordThatCannotBeDeletedKeepsItsMessage) {
  world.database.before_write = [] { throw RuntimeError(ErrorNumber::DiskFull); };
  Store().DeleteItemIndex(1);
  EXPECT_TRUE(world.files.Exists(world.messages + "new.wav"));
  EXPECT_TRUE(world.Logged("ErrDeleteItemIndex 61 Disk full"));
}

TEST_F(CallStoreTest, ClearKeepsTheFiles) {
  world.Machine().ListView1.Select(1);
  world.Machine().player.Play();
  Store().ClearUpTo(world.Machine().ListView1.Identity(1));
  EXPECT_FALSE(world.Machine().player.IsPlaying());
  EXPECT_THAT(world.views.rows, IsEmpty());
  EXPECT_EQ(world.Machine().ListView1.Total(), 0);
  EXPECT_EQ(world.Machine().ListView1.NewCalls(), 0);
  EXPECT_EQ(world.files.Names(world.messages).size(), 2U);
}

TEST_F(CallStoreTest, SavesACopyWhereTheUserWantsIt) {
  world.dialogs.save_as = "/home/me/copy.wav";
  Store().SaveFile(world.messages + "new.wav");
  EXPECT_EQ(world.dialogs.save_title, "Save");
  EXPECT_EQ(world.dialogs.save_name, "new.wav");
  EXPECT_EQ(world.dialogs.save_filter, std::string("wav (*.wav)\0*.wav\0", 18));
  EXPECT_EQ(world.files.Content("/home/me/copy.wav"), TimedWave::Sound(1s));
  EXPECT_TRUE(world.files.Exists(world.messages + "new.wav"));
  world.dialogs.save_as.reset();
  EXPECT_THAT(world.LoggedBy([&] { Store().SaveFile(world.messages + "old.wav"); }), IsEmpty());
}

TEST_F(CallStoreTest, ACallThatCannotBeFiledIsFiledBeforeTheNext) {
  const auto call_from = [&](const std::string& name) {
    world.line->Offer();
    world.line->CallerId(name, "1");
    world.RunFor(10ms);
    world.HangUp();
  };
  world.database_full = true;
  call_from("Anna");
  EXPECT_THAT(world.SystemLog(), Contains(HasSubstr("ErrPutCallDetailsInDB 61 Disk full")));
  EXPECT_EQ(world.CallsLog().back(), "Ring: [Anna:1]");
  world.database_full = false;
  call_from("Ben");
  ASSERT_EQ(world.database.Records().size(), 5U);
  EXPECT_EQ(world.database.Field(3, kCallName), "Anna");
  EXPECT_EQ(world.database.Field(4, kCallName), "Ben");
  world.database_full = true;
  call_from("Carl");
  world.database_full = false;
  world.window->Exit();
  EXPECT_EQ(world.database.Records().size(), 6U) << "at the latest when the program ends";
}

TEST_F(CallStoreTest, RoomThatComesBackIsNoticedWithoutAnotherCall) {
  world.database_full = true;
  world.Wave1.stop_result = kWaveDiskFull;
  world.CallAndWaitForRecording();
  world.HangUp();
  world.RunFor(30s);
  const auto causes = world.SystemLog();
  EXPECT_EQ(1, std::ranges::count_if(causes, [](const auto& line) { return line.starts_with("ErrPut"); }));
  world.database_full = false;
  world.RunFor(5s);
  ASSERT_EQ(world.views.rows.size(), 4U);
  EXPECT_EQ(world.views.rows[0].length, "") << "its message still waits";
  world.files.Put(world.Wave1.last_recorded_path, TimedWave::Sound(3s));
  world.RunFor(5s);
  const auto row = world.Machine().ListView1.Row(1);
  EXPECT_EQ(row.length, "3");
  EXPECT_EQ(world.messages + row.key, world.Wave1.last_recorded_path);
  EXPECT_EQ(world.database.Records().size(), 4U);
}

TEST_F(CallStoreTest, AMessageThatCannotMoveYetStaysAwaited) {
  world.database_full = true;
  world.Wave1.stop_result = kWaveDiskFull;
  world.CallAndWaitForRecording();
  world.HangUp();
  world.RunFor(1s);
  const auto stored = world.Wave1.last_recorded_path;
  world.files.Put(stored, TimedWave::Sound(3s));
  world.shared.messages_path = "/home/other/";
  world.files.before_write = [](const std::string& path) {
    if (path.starts_with("/home/other/")) throw RuntimeError(ErrorNumber::PermissionDenied, path);
  };
  world.database_full = false;
  world.RunFor(10s);
  ASSERT_EQ(4U, world.database.Records().size());
  EXPECT_EQ("-1", world.database.Field(3, kType));
  world.files.before_write = [](const std::string&) {};
  world.RunFor(5s);
  EXPECT_EQ("3", world.database.Field(3, kType));
  EXPECT_TRUE(world.files.Exists("/home/other/" + world.database.Field(3, kCallMassageName)));
}

TEST_F(CallStoreTest, AMessageThatFindsRoomBeforeItsCallIsFiledWithIt) {
  world.database_full = true;
  world.Wave1.stop_result = kWaveDiskFull;
  world.CallAndWaitForRecording();
  world.HangUp();
  world.RunFor(1s);
  world.files.Put(world.Wave1.last_recorded_path, TimedWave::Sound(3s));
  world.database_full = false;
  world.window->Exit();
  ASSERT_EQ(world.database.Records().size(), 4U);
  EXPECT_EQ(world.database.Field(3, kType), "3");
}

}  // namespace
}  // namespace orven::test
