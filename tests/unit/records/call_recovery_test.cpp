// SPDX-License-Identifier: GPL-3.0-or-later
// What a start makes of a call during which the program was killed.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <map>
#include <optional>

#include "platform/runtime_error.h"
#include "records/call_fields.h"
#include "support/world.h"

namespace orven::test {
namespace {

using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

constexpr const char* kName = "12-31-2003_14-05-07.wav";
constexpr const char* kJournal = "/home/orven/Call.journal";

class Recovery : public ::testing::Test, public World {
 protected:
  void StartAgain() {
    Crash();
    Start();
  }
  void Call() {
    Start();
    line->Offer();
    line->CallerId("Anna 50%", "555 1234");
    RunFor(10ms);
  }
  void CallAndRecord(std::chrono::milliseconds length) {
    Call();
    Talk();
    while (!line->IsAnswered()) {
      line->Ring();
      RunFor(1s);
    }
    time.RunUntil([this] { return Wave1.IsRecording(); }, 60s);
    RunFor(length);
  }
  /// The records: name, number, date, time, length.
  std::vector<std::vector<std::string>> Filed() {
    std::vector<std::vector<std::string>> filed;
    for (std::size_t i = 0; i < database.Records().size(); ++i) {
      auto& record = filed.emplace_back();
      for (const char* field : {kCallName, kCallNumber, kCallDate, kCallTime, kType})
        record.push_back(database.Field(i, field));
    }
    return filed;
  }
  const std::vector<std::string> call_without_message{"Anna 50%", "555 1234", "12/31/2003", "14:05:07", "-1"};
  const std::vector<std::string> call_of_two_seconds{"Anna 50%", "555 1234", "12/31/2003", "14:05:07", "2"};
};

TEST_F(Recovery, ARingingCallIsFiledOnceWithWhatIsKnownOfIt) {
  Call();
  StartAgain();
  EXPECT_THAT(Filed(), ElementsAre(call_without_message));
  EXPECT_THAT(SystemLog(), Contains(HasSubstr("Recovered call 12/31/2003 14:05:07 [Anna 50%:555 1234]")));
  EXPECT_THAT(CallsLog(), Contains("Ring: [Anna 50%:555 1234]"));
  EXPECT_FALSE(files.Exists(kJournal));
  StartAgain();
  EXPECT_EQ(1U, Filed().size());
}

TEST_F(Recovery, TheRecordedPartBecomesTheMessageWithoutAnySoundOrAction) {
  for (const char* setting : {"pAppTo", "pMailTo", "cPlayInIdle", "WhenMsgViewMsg"})
    registry.Set(setting, "1");
  CallAndRecord(2s);
  files.Put(messages + kName, "somebody else's");
  views.effects.clear();
  StartAgain();
  EXPECT_THAT(Filed(), ElementsAre(call_of_two_seconds));
  const auto name = database.Field(0, kCallMassageName);
  EXPECT_THAT(name, HasSubstr("12-31-2003_14-05-07.kept_"));
  EXPECT_EQ(TimedWave::Sound(2s), files.Content(messages + name));
  EXPECT_EQ("somebody else's", files.Content(messages + kName));
  EXPECT_THAT(files.List(messages, "*.part"), IsEmpty());
  EXPECT_THAT(CallsLog(), Contains("Ring:2 [Anna 50%:555 1234]"));
  RunFor(10s);
  EXPECT_THAT(views.effects, ElementsAre("sound:/home/orven/beep.wav"));
}

TEST_F(Recovery, WhatEndsByItselfIsNotFiledAgain) {
  CallAndRecord(2s);
  const auto early_journal = files.Content(kJournal);
  HangUp();
  EXPECT_THAT(Filed(), ElementsAre(call_of_two_seconds));
  EXPECT_FALSE(files.Exists(kJournal));
  Crash();
  files.Put(kJournal, early_journal);  // as a loss of power may leave it
  Start();
  EXPECT_EQ(1U, Filed().size());
  EXPECT_FALSE(files.Exists(kJournal));
}

TEST_F(Recovery, TheOwnersCallAndACallWithoutAMessageThatIsNotListedAreLeftOut) {
  AddMessage("old.wav", 60s);
  CallAndRecord(0s);
  HangUp();
  CallAndWaitForAnswer();
  Press("4711*");
  ASSERT_TRUE(CurrentCall().admin_mode);
  line->CallerId("Late", "1");
  RunFor(10ms);
  StartAgain();
  EXPECT_EQ(2U, Filed().size());
  registry.Set("ListMessageOnly", "1");
  StartAgain();
  line->Offer();
  RunFor(10ms);
  StartAgain();
  EXPECT_EQ(2U, Filed().size());
  EXPECT_FALSE(files.Exists(kJournal));
  registry.Set("ListMessageOnly", "0");
}

TEST_F(Recovery, ACallThatCouldNotBeFiledOutlivesTheProgram) {
  CallAndRecord(2s);
  database_full = true;
  HangUp();
  StartAgain();
  StartAgain();
  EXPECT_THAT(Filed(), IsEmpty());
  database_full = false;
  StartAgain();
  EXPECT_THAT(Filed(), ElementsAre(call_of_two_seconds));
  EXPECT_FALSE(files.Exists(kJournal));
}

TEST_F(Recovery, AMessageThatFoundNoRoomBeforeTheEndIsFiledWithWhatGrewOfIt) {
  CallAndRecord(2s);
  const auto growing = *Wave1.GrowingFile();
  Wave1.stop_result = kWaveDiskFull;
  database_full = true;
  HangUp();
  RunFor(1s);
  Crash();
  files.Put(growing.path, growing.content);
  database_full = false;
  Start();
  EXPECT_THAT(Filed(), ElementsAre(call_of_two_seconds));
  EXPECT_EQ(growing.content, files.Content(messages + kName));
  EXPECT_FALSE(files.Exists(growing.path));
}

TEST_F(Recovery, ADamagedJournalIsKeptAndAStrayRecordingIsStillACall) {
  CallAndRecord(2s);
  Crash();
  files.Put(kJournal, "call\t1\trubbish\nmore");
  RunFor(60s);
  files.Put(messages + ".recording-9-9.wav.part", "no sound");
  RunFor(60s);
  Start();
  ASSERT_EQ(1U, Filed().size());
  EXPECT_EQ("UNKNOWN", Filed()[0][0]);
  EXPECT_EQ("2", Filed()[0][4]);
  EXPECT_EQ(kName, database.Field(0, kCallMassageName));
  EXPECT_EQ("call\t1\trubbish\nmore", files.Content(std::string(kJournal) + ".damaged"));
  EXPECT_TRUE(files.Exists(messages + ".recording-9-9.wav.part.damaged"));
  StartAgain();
  EXPECT_EQ(1U, Filed().size());
}

TEST_F(Recovery, ACallWithoutANameForItsMessageClaimsNoneOfTheOthers) {
  Start();
  Crash();
  files.Put(kJournal, "call\t1\t\t\tAnna\t\t\t\t\t" + messages + "\t\t0\t0\n");
  files.Put(messages + ".recording-a-1-1.wav.part", TimedWave::Sound(2s));
  files.Put(messages + ".recording-b-1-2.wav.part", TimedWave::Sound(3s));
  RunFor(60s);
  Start();
  EXPECT_EQ(3U, Filed().size());
  EXPECT_EQ(TimedWave::Sound(2s), files.Content(messages + "a.wav"));
  EXPECT_EQ(TimedWave::Sound(3s), files.Content(messages + "b.wav"));
}

TEST_F(Recovery, AMessageThatTheFolderDoesNotTakeIsKeptAndNamed) {
  CallAndRecord(2s);
  Crash();
  files.before_write = [this](const std::string& path) {
    if (path == messages + kName) throw RuntimeError(ErrorNumber::PermissionDenied, path);
  };
  Start();
  EXPECT_THAT(Filed(), ElementsAre(call_without_message));
  const auto kept = messages + "12-31-2003_14-05-07.unsaved-1.wav";
  EXPECT_EQ(TimedWave::Sound(2s), files.Content(kept));
  EXPECT_THAT(SystemLog(), Contains(HasSubstr(kept)));
}

/// What is on the disk at one moment.
struct Disk {
  std::map<std::string, std::string> files;
  std::vector<MemoryDatabase::Fields> records;
};

Disk DiskOf(World& world) {
  Disk disk{{}, world.database.Records()};
  for (const std::string folder : {"/", "/Messages/", "/Log/"}) {
    const auto path = World::kHome + folder;
    for (const auto& name : world.files.Names(path))
      disk.files[path + name] = world.files.Content(path + name);
  }
  if (const auto growing = world.Wave1.GrowingFile()) disk.files[growing->path] = growing->content;
  return disk;
}

/// The disk before each write of what `act` does, and after all of them.
std::vector<Disk> DisksOf(World& world, const std::function<void()>& act) {
  std::vector<Disk> disks;
  world.files.before_write = [&](const std::string&) { disks.push_back(DiskOf(world)); };
  world.database.before_write = [&] { disks.push_back(DiskOf(world)); };
  act();
  world.files.before_write = [](const std::string&) {};
  world.database.before_write = [] {};
  disks.push_back(DiskOf(world));
  return disks;
}

std::vector<Disk> DisksOfAStartOn(const Disk& disk, World& world) {
  for (const auto& [path, content] : disk.files) world.files.Put(path, content);
  world.database.Records() = disk.records;
  world.RunFor(60s);
  return DisksOf(world, [&] { world.Start(); });
}

/// The contents of the sound files.
std::vector<std::string> SoundsIn(const Disk& disk) {
  std::vector<std::string> sounds;
  for (const auto& [path, content] : disk.files) {
    if (path.find("/Messages/") != std::string::npos) sounds.push_back(content);
  }
  return sounds;
}

/// So many calls, each with what was recorded of its message, and nothing else; `before` is the disk on which
/// the program was killed first.
void ExpectWhole(const Disk& before, const Disk& after, std::size_t calls) {
  ASSERT_EQ(calls, after.records.size());
  EXPECT_EQ(SoundsIn(before), SoundsIn(after));
  EXPECT_FALSE(after.files.contains(kJournal));
  if (calls == 0) return;
  const auto& record = after.records[0];
  EXPECT_EQ(SoundsIn(before).empty(), record[5] == "-1");
  if (SoundsIn(before).empty()) return;
  EXPECT_EQ("Anna", record[0]);
  EXPECT_EQ("555", record[1]);
  EXPECT_EQ(1U, after.files.count("/home/orven/Messages/" + record[4]));
}

TEST(CallRecovery, KilledAtAnyWriteOfACallAndOfItsRecoveryNothingIsLostOrTwice) {
  World called;
  called.Start();
  const auto disks = DisksOf(called, [&] {
    called.line->Offer();
    called.line->CallerId("Anna", "555");
    called.RunFor(10ms);
    called.CallAndWaitForRecording();
    called.Talk();
    called.RunFor(2s);
    called.HangUp();
  });
  std::size_t calls = 0;
  for (const auto& disk : disks) {
    if (disk.files.contains(kJournal)) calls = 1;
    World started;
    const auto recoveries = DisksOfAStartOn(disk, started);
    ExpectWhole(disk, recoveries.back(), calls);
    for (const auto& killed : recoveries) {
      World again;
      ExpectWhole(disk, DisksOfAStartOn(killed, again).back(), calls);
    }
    if (HasFailure()) return;
  }
  EXPECT_GT(disks.size(), 20U);
  EXPECT_EQ(1U, calls);
}

}  // namespace
}  // namespace orven::test
