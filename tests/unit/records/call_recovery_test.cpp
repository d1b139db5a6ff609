// SPDX-License-Identifier: GPL-3.0-or-later
// What a start makes of a call during which the program was killed.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <map>
#include <optional>

#include "base/runtime_error.h"
#include "records/call.h"
#include "records/grown_recordings.h"
#include "support/world.h"

namespace orven::test {
namespace {

using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;

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
  EXPECT_THAT(SystemLog(), Not(Contains(HasSubstr("Recovered call"))));
  database_full = false;
  StartAgain();
  RunFor(10s);
  EXPECT_THAT(Filed(), ElementsAre(call_of_two_seconds));
  EXPECT_THAT(SystemLog(), Contains(HasSubstr("Recovered call")).Times(1));
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
  files.Put(messages + ".recording-c-9-8.wav.part", TimedWave::Sound(0s));
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
  files.Put(kJournal, "call\t1\t\t\tAnna\t\t\t\t\t" + messages + "\t\t\t0\t0\t\n");
  files.Put(messages + ".recording-a-1-1.wav.part", TimedWave::Sound(2s));
  files.Put(messages + ".recording-b-1-2.wav.part", TimedWave::Sound(3s));
  RunFor(60s);
  Start();
  EXPECT_EQ(3U, Filed().size());
  EXPECT_EQ(TimedWave::Sound(2s), files.Content(messages + "a.wav"));
  EXPECT_EQ(TimedWave::Sound(3s), files.Content(messages + "b.wav"));
}

TEST_F(Recovery, AMessageOutOfReachIsFiledWithItsCallOrCompletesTheRecordLater) {
  for (const bool listed : {true, false}) {
    for (const bool readable : {true, false}) {
      World other;
      other.registry.Set("ListMessageOnly", listed ? "0" : "1");
      other.Start();
      other.CallAndWaitForRecording();
      other.Talk();
      other.RunFor(2s);
      other.Crash();
      for (int start = 0; start < 2; ++start) {
        if (!readable) other.files.missing_folders.insert(other.messages);
        other.files.before_write = [&](const std::string& path) {
          if (path.starts_with(other.messages)) throw RuntimeError(ErrorNumber::PermissionDenied, path);
        };
        other.Start();
        other.RunFor(60s);
        EXPECT_EQ(listed ? 1U : 0U, other.database.Records().size());
        if (start == 0) other.Crash();
      }
      other.files.missing_folders.clear();
      other.files.before_write = [](const std::string&) {};
      other.RunFor(6s);
      ASSERT_EQ(1U, other.database.Records().size());
      EXPECT_EQ("2", other.database.Field(0, kType));
      EXPECT_EQ(TimedWave::Sound(2s),
                other.files.Content(messages + other.database.Field(0, kCallMassageName)));
      EXPECT_THAT(other.files.List(messages, "*.part"), IsEmpty());
      EXPECT_FALSE(other.files.Exists(kJournal));
      ASSERT_EQ(1U, other.views.rows.size());
      EXPECT_EQ("2", other.Machine().ListView1.Row(1).length);
    }
  }
}

TEST_F(Recovery, ARecordWhoseMessageFoundNoRoomGetsItFromTheNextStart) {
  for (const bool journal_lost : {false, true}) {
    World other;
    other.Start();
    other.line->Offer();
    other.line->CallerId("Anna", "555");
    other.CallAndWaitForRecording();
    other.Talk();
    other.RunFor(2s);
    const auto growing = *other.Wave1.GrowingFile();
    other.Wave1.stop_result = kWaveDiskFull;
    other.HangUp();
    other.RunFor(30s);
    ASSERT_EQ(1U, other.database.Records().size());
    other.Crash();
    other.files.Put(growing.path, growing.content);
    other.files.Put(other.messages + kName, "somebody else's");
    if (journal_lost) other.files.Delete(kJournal);
    other.RunFor(60s);
    for (int starts = 0; starts < 2; ++starts) {
      other.Start();
      ASSERT_EQ(1U, other.database.Records().size());
      EXPECT_EQ("Anna", other.database.Field(0, kCallName));
      EXPECT_EQ("2", other.database.Field(0, kType));
      EXPECT_EQ(growing.content, other.files.Content(messages + other.database.Field(0, kCallMassageName)));
      EXPECT_FALSE(other.files.Exists(kJournal));
      other.Crash();
    }
  }
}

TEST_F(Recovery, ADeletedCallWhoseMessageFoundNoRoomStaysDeleted) {
  CallAndRecord(2s);
  Wave1.stop_result = kWaveDiskFull;
  HangUp();
  ASSERT_EQ(1U, Filed().size());
  Machine().calls.DeleteItemIndex(1);
  StartAgain();
  EXPECT_THAT(Filed(), IsEmpty());
  EXPECT_FALSE(files.Exists(kJournal));
}

TEST_F(Recovery, RecordingsOfOneNameAreCallsOfTheirOwnUnlessOneIsTheOthersBeginning) {
  const std::string header = " data4711";
  CallAndRecord(2s);
  Crash();
  const auto stem = std::string(".recording-12-31-2003_14-05-07");
  files.Put(messages + stem + "-8-1.wav.part", "sound 5000" + header + "another's");
  RunFor(60s);
  files.Put(messages + ".recording-a-1-1.wav.part", "sound 3000" + header + "abcdef");
  files.Put(messages + ".recording-a-1-2.wav.part", "sound 2000" + header + "abcd");
  files.Put(messages + ".recording-a-2-1.wav.part", "sound 2500" + header + "abxx");
  RunFor(60s);
  files.Put(messages + ".recording-b-2-1.wav.part", "sound 1000");
  Start();
  RunFor(4s);
  ASSERT_EQ(4U, Filed().size());
  EXPECT_EQ(call_of_two_seconds, Filed()[0]);
  std::vector<std::string> lengths;
  for (const auto& record : Filed()) lengths.push_back(record[4]);
  EXPECT_THAT(lengths, testing::UnorderedElementsAre("2", "5", "3", "2.5"));
  EXPECT_EQ("sound 3000" + header + "abcdef", files.Content(messages + "a.wav"));
  EXPECT_THAT(files.List(messages, "*.part"), ElementsAre(".recording-b-2-1.wav.part"));
  RunFor(7s);
  EXPECT_EQ(5U, Filed().size()) << "it has not grown since the start";
  EXPECT_THAT(files.List(messages, "*.part"), IsEmpty());
}

TEST_F(Recovery, SoundBehindWhatTheHeaderCountsIsCounted) {
  const std::string format("fmt \x10\0\0\0\x01\0\x01\0\x40\x1F\0\0\x80\x3E\0\0\x02\0\x10\0", 24);
  const auto file = [&](char riff, char data) {
    return "RIFF" + std::string{riff, 0, 0, 0} + "WAVE" + format + "data" + std::string{data, 0, 0, 0};
  };
  files.Put("cut", file(40, 4) + "abcdefg");
  EXPECT_EQ(file(42, 6) + "abcdefg", WithAllSound(files, "cut")) << "no half sample is counted";
  files.Put("whole", file(40, 4) + "abcd");
  files.Put("half", file(40, 4) + "abcde");
  files.Put("short", file(40, 4) + "ab");
  files.Put("rubbish", "RIFF data");
  for (const char* name : {"whole", "half", "short", "rubbish"}) EXPECT_EQ("", WithAllSound(files, name));
}

TEST_F(Recovery, WhatGrowsOnIsLeftAlone) {
  Start();
  Crash();
  files.Put(messages + ".recording-b-2-1.wav.part", "sound 1000");
  Start();
  for (int second = 0; second < 60; ++second) {
    files.Put(messages + ".recording-b-2-1.wav.part", "sound 2000");
    RunFor(1s);
  }
  RunFor(60s);
  EXPECT_THAT(Filed(), IsEmpty());
  EXPECT_TRUE(files.Exists(messages + ".recording-b-2-1.wav.part"));
}

TEST_F(Recovery, RecordsThatOpenLateGetTheCallThen) {
  Call();
  Crash();
  database.gone = true;
  Start();
  RunFor(60s);
  database.gone = false;
  RunFor(6s);
  EXPECT_THAT(Filed(), ElementsAre(call_without_message));
  EXPECT_FALSE(files.Exists(kJournal));
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
