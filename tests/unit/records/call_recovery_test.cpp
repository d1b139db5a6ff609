// SPDX-License-Identifier: GPL-3.0-or-later
// Recovery, at the next start, of a call during which the program was killed.
#include <gmock/gmock.h>

#include <functional>

#include "base/runtime_error.h"
#include "records/grown_recordings.h"
#include "support/world.h"

namespace orven::test {
namespace {

using testing::ElementsAre;
using testing::EndsWith;
using testing::IsEmpty;
using testing::StartsWith;
using testing::UnorderedElementsAre;

const std::string kStem = "12-31-2003_14-05-07";
const std::string kName = kStem + ".wav";
const std::string kFolder = "/home/orven/";
const std::string kJournal = kFolder + "Call.journal";  // version 1.0 had it
const std::string kAnna = "Anna 50% 555 1234 14:05:07 12/31/2003 ";

struct Recovery : testing::Test, World {
  void TestBody() override {}
  void StartAgain() {
    Crash();
    Start();
  }
  void Call() {
    line->Offer();
    line->CallerId("Anna 50%", "555 1234");
    RunFor(10ms);
  }
  void CallAndRecord(std::chrono::milliseconds length) {
    Talk();
    CallAndWaitForAnswer();
    line->CallerId("Anna 50%", "555 1234");
    time.RunUntil([this] { return Wave1.IsRecording(); }, 60s);
    RunFor(length);
  }
  /// Returns whether any call is left that a start would have to finish.
  bool AnyOpen() const { return !database.open.empty() || !files.List(kFolder, "*call*").empty(); }
  /// Puts the unfinished recording `name` into the messages folder.
  void PutGrown(const std::string& name, const std::string& content) {
    files.Put(messages + ".recording-" + name + ".wav.part", content);
  }
  std::vector<std::string> Grown() { return files.List(messages, "*.part"); }
  /// Returns the records, each as name, number, time, date and length.
  std::vector<std::string> Filed() {
    std::vector<std::string> filed;
    for (const auto& record : database.Records())
      filed.push_back(record[0] + " " + record[1] + " " + record[2] + " " + record[3] + " " + record[5]);
    return filed;
  }
  /// Returns the message file name of the newest record.
  std::string MessageName() { return database.Records().back()[4]; }
};

TEST_F(Recovery, TheRecordedPartBecomesTheMessageWithoutAnySoundOrAction) {
  for (const char* setting : {"pAppTo", "pMailTo", "cPlayInIdle", "WhenMsgViewMsg"})
    registry.Set(setting, "1");
  Start();
  CallAndRecord(2s);
  files.Put(messages + kName, "somebody else's");
  views.effects.clear();
  StartAgain();
  EXPECT_THAT(Filed(), ElementsAre(kAnna + "2"));
  EXPECT_THAT(MessageName(), testing::HasSubstr(kStem + ".kept_"));
  EXPECT_EQ(TimedWave::Sound(2s), files.Content(messages + MessageName()));
  EXPECT_EQ("somebody else's", files.Content(messages + kName));
  EXPECT_THAT(Grown(), IsEmpty());
  EXPECT_THAT(CallsLog(), testing::Contains("Ring:2 [Anna 50%:555 1234]"));
  EXPECT_TRUE(
      Logged("Recovered call 12/31/2003 14:05:07 [Anna 50%:555 1234], message " + MessageName() + " (2 s)"));
  RunFor(10s);
  EXPECT_THAT(views.effects, ElementsAre("sound:/home/orven/beep.wav"));
}

TEST_F(Recovery, TheOwnersCallAndACallWithoutAMessageThatIsNotListedAreLeftOut) {
  Start();
  CallAndWaitForAnswer();
  Press("4711*");
  line->CallerId("Late", "1");
  RunFor(10ms);
  registry.Set("ListMessageOnly", "1");
  StartAgain();
  Call();
  StartAgain();
  EXPECT_THAT(Filed(), IsEmpty());
  EXPECT_FALSE(AnyOpen());
}

TEST_F(Recovery, AMessageThatCouldNotBeStoredIsFiledByTheNextStartUnlessItsRecordWasDeleted) {
  for (const std::string fate : {"call not filed", "call filed", "deleted"}) {
    SCOPED_TRACE(fate);
    database.Records().clear();
    Wave1.stop_result = kWaveOk;
    StartAgain();
    CallAndRecord(2s);
    const auto growing = *Wave1.GrowingFile();
    Wave1.stop_result = kWaveDiskFull;
    database_full = fate == "call not filed";
    HangUp();
    RunFor(30s);
    EXPECT_EQ(database_full ? 0U : 1U, Filed().size());
    const auto who = Filed().empty() ? "Anna 50%" : Filed()[0].substr(0, kAnna.size());
    if (fate == "deleted") Machine().calls.DeleteItemIndex(1);
    Crash();
    if (fate != "deleted") files.Put(growing.first, growing.second);
    RunFor(60s);
    database_full = false;
    for (int starts = 0; starts < 2; ++starts) {
      Start();
      EXPECT_FALSE(files.Exists(growing.first) || AnyOpen());
      ASSERT_EQ(fate == "deleted" ? 0U : 1U, Filed().size());
      if (fate != "deleted") {
        EXPECT_THAT(Filed()[0], testing::AllOf(StartsWith(who), EndsWith(" 2")));
        EXPECT_EQ(growing.second, files.Content(messages + MessageName()));
      }
      Crash();
    }
  }
}

TEST_F(Recovery, CallsAreFiledOnceTheRecordsOpenEvenOneWithATornNote) {
  Start();
  database.gone = true;
  Call();
  Crash();
  const auto note = kFolder + files.List(kFolder, ".call-*").at(0);
  files.Put(note, files.Content(note) + "\n0\tcut");
  files.Put(kFolder + ".call-7", "\n0\tcut");
  Start();
  Call();
  StartAgain();
  RunFor(60s);
  database.gone = false;
  RunFor(6s);
  EXPECT_THAT(Filed(), ElementsAre(kAnna + "-1", kAnna + "-1"));
  EXPECT_TRUE(files.Exists(kFolder + "call-7.damaged") && database.open.empty());
}

TEST_F(Recovery, AnOpenCallOfAnotherApplicationFolderIsLeftToItWhileThatExists) {
  std::vector<std::string> fields(kOpenCallFields.size());
  fields.back() = "/home/other/";
  database.open[7] = {7, 0, fields};
  for (const std::size_t filed : {0U, 1U}) {
    Start();
    EXPECT_EQ(filed, Filed().size());
    Crash();
    files.missing_folders.insert("/home/other/");
  }
}

TEST_F(Recovery, WhatVersion1LeftIsTakenOverAndAStrayRecordingIsStillACall) {
  const auto call = [](const std::string& number, const std::string& name, const std::string& rest) {
    return "call\t" + number + "\t12/31/2003\t14:00:0" + number + "\t" + name + "\t5\t2\t" + rest + "\n";
  };
  const std::string journal =
      "rubbish\n" + call("1", "Growing%25", "1.wav\t\t" + messages + "\t1~5\t\t0\t0\t") +
      call("2", "Filed", "2.wav\t\t\t\t\t0\t0\t1") +
      call("3", "Stored",
           "3.wav\t" + messages + "3.wav\t" + messages + "\t3~5\t" + messages + "3.wav\t1\t0\t") +
      call("4", "Late", "4.wav\t\t" + messages + "\t4~5\t" + messages + "4.wav\t1\t0\t2") + "mail\t2\n" +
      call("5", "Done", "5.wav\t\t\t\t\t0\t0\t") + "done\t5\ncall\t2\tcut";
  registry.Set("pMailTo", "1"), registry.Set("ActionsMailAllCalls", "1");
  files.Put(kJournal, journal);
  files.Put(kJournal + ".damaged", "older");
  for (const char* name : {"Filed", "Late"}) database.Put({{kCallName, name}, {kType, "-1"}});
  PutGrown("1~5-9-9", TimedWave::Sound(1s));
  files.Put(messages + "3.wav", TimedWave::Sound(3s));
  PutGrown("4~5-9-9", TimedWave::Sound(4s));
  PutGrown("9-9", "no sound");
  PutGrown("c-9-8", TimedWave::Sound(0s));
  PutGrown("a-1-1", TimedWave::Sound(7s));
  RunFor(60s);
  for (int starts = 0; starts < 2; ++starts) {
    Start().RunFor(1s);
    EXPECT_THAT(Filed(), UnorderedElementsAre("Filed    -1", "Late    4", "Growing% 5 14:00:01 12/31/2003 1",
                                              "Stored 5 14:00:03 12/31/2003 3", EndsWith(" 12/31/2003 7")));
    EXPECT_EQ(1U, Mail1.mails.size());
    Crash();
  }
  EXPECT_EQ(TimedWave::Sound(7s), files.Content(messages + "a.wav"));
  EXPECT_EQ(journal, files.Content(kJournal + ".damaged-2"));
  EXPECT_TRUE(files.Exists(messages + ".recording-9-9.wav.part.damaged") && database.open.empty());
}

class MessageOutOfReach : public Recovery, public testing::WithParamInterface<std::tuple<bool, bool>> {};

TEST_P(MessageOutOfReach, IsFiledWithItsCallOrCompletesTheRecordLater) {
  const auto [listed, hidden] = GetParam();
  registry.Set("ListMessageOnly", listed ? "0" : "1");
  Start();
  CallAndRecord(2s);
  Crash();
  if (hidden) files.missing_folders.insert(messages);
  files.before_write = [this](const std::string& path) {
    if (path.starts_with(messages)) throw RuntimeError(ErrorNumber::PermissionDenied, path);
  };
  for (int start = 0; start < 2; ++start) {
    StartAgain();
    RunFor(60s);
    EXPECT_EQ(listed ? 1U : 0U, Filed().size());
  }
  files.missing_folders.clear();
  files.before_write = [](const std::string&) {};
  RunFor(6s);
  EXPECT_THAT(Filed(), ElementsAre(kAnna + "2"));
  EXPECT_EQ(TimedWave::Sound(2s), files.Content(messages + MessageName()));
  EXPECT_THAT(Grown(), IsEmpty());
  EXPECT_FALSE(AnyOpen());
  ASSERT_EQ(1U, views.rows.size());
  EXPECT_EQ("2", Machine().ListView1.Row(1).length);
}

INSTANTIATE_TEST_SUITE_P(ListedOrNot, MessageOutOfReach, testing::Combine(testing::Bool(), testing::Bool()));

TEST_F(Recovery, AStoredMessageFollowsTheChangedFolderOnceThatCanBeWritten) {
  Start();
  CallAndRecord(2s);
  database_full = true;
  HangUp();
  Crash();
  database_full = false;
  registry.Set("MassagesPath", "/mnt/new/");
  files.before_write = [](const std::string& path) {
    if (path.starts_with("/mnt/new/")) throw RuntimeError(ErrorNumber::PermissionDenied, path);
  };
  Start();
  RunFor(60s);
  EXPECT_THAT(Filed(), ElementsAre(kAnna + "-1"));
  files.before_write = [](const std::string&) {};
  RunFor(6s);
  EXPECT_THAT(Filed(), ElementsAre(kAnna + "2"));
  EXPECT_EQ(TimedWave::Sound(2s), files.Content("/mnt/new/" + MessageName()));
}

TEST_F(Recovery, RecordingsOfOneNameAreSeparateCallsUnlessOneIsThePrefixOfAnotherOrGrows) {
  const std::string header = " data4711";
  Start();
  CallAndRecord(2s);
  Crash();
  PutGrown(kStem + "-8-1", "sound 5000" + header + "another's");
  RunFor(60s);
  PutGrown("a-1-1", "sound 3000" + header + "abcdef");
  PutGrown("a-1-2", "sound 2000" + header + "abcd");
  PutGrown("a-2-1", "sound 2500" + header + "abxx");
  RunFor(60s);
  for (const char* name : {"b-2-1", "c-2-1"}) PutGrown(name, "sound 1000");
  Start();
  RunFor(4s);
  EXPECT_THAT(Filed(), UnorderedElementsAre(kAnna + "2", EndsWith(" 5"), EndsWith(" 3"), EndsWith(" 2.5")));
  EXPECT_EQ("sound 3000" + header + "abcdef", files.Content(messages + "a.wav"));
  EXPECT_EQ(2U, Grown().size());
  for (int second = 0; second < 60; ++second, RunFor(1s)) PutGrown("c-2-1", "sound 2000");
  RunFor(60s);
  EXPECT_EQ(5U, Filed().size()) << "one has not grown since the start";
  EXPECT_THAT(Grown(), ElementsAre(".recording-c-2-1.wav.part")) << "it belongs to another program";
}

TEST_F(Recovery, AudioMissingFromTheLengthInTheHeaderIsCounted) {
  const std::string format("fmt \x10\0\0\0\x01\0\x01\0\x40\x1F\0\0\x80\x3E\0\0\x02\0\x10\0", 24);
  const auto file = [&](char riff, char data, char samples = 0) {
    const auto fact = samples == 0 ? "" : std::string("fact\4\0\0\0", 8) + std::string{samples, 0, 0, 0};
    return "RIFF" + std::string{riff, 0, 0, 0} + "WAVE" + format + fact + "data" + std::string{data, 0, 0, 0};
  };
  files.Put("cut", file(52, 4, 2) + "abcdefg");
  EXPECT_EQ(file(54, 6, 3) + "abcdefg", WithAllAudio(files, "cut")) << "half a sample is not counted";
  for (const auto& whole :
       {file(40, 4) + "abcd", file(40, 4) + "abcde", file(40, 4) + "ab", std::string("RIFF data")}) {
    files.Put("whole", whole);
    EXPECT_EQ("", WithAllAudio(files, "whole"));
  }
}

/// Kills the program at the `number`-th write of `act`; nothing is written after it. Returns false if there
/// are fewer writes.
bool KillAt(World& world, std::uint64_t number, const std::function<void()>& act) {
  bool killed = false;
  world.disk.on_failure = [&](const std::string&) {
    const auto growing = world.Wave1.GrowingFile();
    if (!std::exchange(killed, true) && growing) world.files.Put(growing->first, growing->second);
  };
  world.disk.FailAt(number);
  act();
  world.Crash();
  world.disk.Mend();
  for (const auto& path : std::exchange(world.Wave1.unsaved, {})) world.files.Delete(path);
  world.RunFor(60s);
  return killed;
}

/// The parameter tells whether the records can be changed during the call.
class RecoveryAtEveryWrite : public testing::TestWithParam<bool> {};

TEST_P(RecoveryAtEveryWrite, KilledAtAnyWriteOfACallAndOfItsRecoveryNothingIsLostOrTwice) {
  std::uint64_t write = 0;
  for (bool in_call = true; in_call && !testing::Test::HasFailure();) {
    ++write;
    bool in_start = true;
    for (std::uint64_t again = 1; in_start && !testing::Test::HasFailure(); ++again) {
      SCOPED_TRACE("killed at write " + std::to_string(write) + " and " + std::to_string(again));
      Recovery world;
      world.Start();
      world.database_full = !GetParam();
      in_call = KillAt(world, write, [&] { world.CallAndRecord(2s), world.HangUp(); });
      const auto names = world.files.Names(world.messages);
      const auto message = names.empty() ? "" : world.files.Content(world.messages + names[0]);
      const bool began = world.AnyOpen() || !world.Filed().empty();
      world.database_full = false;
      in_start = KillAt(world, again, [&] { world.Start(); });
      world.Start();
      EXPECT_FALSE(world.AnyOpen());
      EXPECT_EQ(world.files.Names(world.messages).size(), names.size());
      ASSERT_EQ(world.Filed().size(), began ? 1U : 0U);
      EXPECT_TRUE(!began || (world.database.Field(0, kType) == "-1") == names.empty());
      if (names.empty()) continue;
      EXPECT_THAT(world.Filed()[0], StartsWith("Anna 50% 555 1234 "));
      EXPECT_EQ(world.files.Content(world.messages + world.MessageName()), message);
    }
  }
  EXPECT_GT(write, 20U);
}

INSTANTIATE_TEST_SUITE_P(RecordsWritable, RecoveryAtEveryWrite, testing::Bool());

}  // namespace
}  // namespace orven::test
