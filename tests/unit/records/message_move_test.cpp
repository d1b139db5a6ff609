// SPDX-License-Identifier: GPL-3.0-or-later
#include <gmock/gmock.h>

#include "base/runtime_error.h"
#include "support/world.h"

namespace orven::test {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

const std::string kNew = "/mnt/new/";

/// Three messages, a call without one, and a file that belongs to no call.
struct MessageMoveTest : testing::Test, World {
  MessageMoveTest() {
    for (const char* name : {"1.wav", "2.wav", "3.wav"}) AddMessage(name, 5s);
    AddCallWithoutMessage();
    files.Put(messages + "none.wav", "a stranger's");
    Start();
  }
  void TestBody() override {}
  void MoveTo(const std::string& folder = kNew) {
    Machine().move.Begin(folder);
    RunFor(100ms);
  }
  /// Kills the program when it has moved 1.wav but not the others.
  void MoveAndKill() {
    background.takes = 1s;
    Machine().move.Begin(kNew);
    RunFor(1500ms);
    background.takes = 0ms;
    Crash();
  }
  void StartAndWait() {
    Start();
    RunFor(1s);
  }
  /// Makes writes to a path fail if `fails` returns true for it.
  void FailWrites(std::function<bool(const std::string& path)> fails) {
    files.before_write = [fails = std::move(fails)](const std::string& path) {
      if (fails(path)) throw RuntimeError(ErrorNumber::DiskFull, path);
    };
  }
  void ExpectStored(const std::string& folder, const std::string& next = kNotFound) {
    EXPECT_EQ(registry.Text("MassagesPath"), folder);
    EXPECT_EQ(registry.Text("MassagesPathNext"), next);
  }
};

TEST_F(MessageMoveTest, MovesTheMessagesThatAreThereAndOverwritesNone) {
  files.Delete(messages + "2.wav");
  const auto older = std::string(TimedWave::Sound(5s).size(), 'x');
  files.Put(kNew + "3.wav", older);
  MoveTo();
  EXPECT_THAT(files.Names(kNew), ElementsAre("1.wav", "3.wav"));
  EXPECT_EQ(files.Content(kNew + "3.wav"), older);
  EXPECT_THAT(files.Names(messages), ElementsAre("3.wav", "none.wav"));
  ExpectStored(kNew);
  EXPECT_EQ(Machine().folders.Serving() + Machine().settings.MassagesPath, kNew + kNew);
  EXPECT_TRUE(Logged("Message is missing: " + messages + "2.wav"));
  EXPECT_THAT(dialogs.informations, ElementsAre(testing::EndsWith("\n\n3.wav"))) << "2.wav was missing";
}

TEST(MessageMoveSteps, AFailureAtAnyStepLosesNothing) {
  constexpr int kSteps = 5;  // a test file is written and deleted, and three messages are moved
  for (int failing = 1; failing <= kSteps; ++failing) {
    for (const int last : {failing, kSteps}) {
      SCOPED_TRACE(std::to_string(failing) + " to " + std::to_string(last));
      MessageMoveTest world;
      int step = 0;
      world.FailWrites(
          [&](auto& path) { return path.starts_with(kNew) && ++step >= failing && step <= last; });
      world.MoveTo();
      world.FailWrites([](auto&) { return false; });
      world.ExpectStored(failing == 1 ? world.messages : kNew);
      EXPECT_EQ(world.Logged("ErrcmdBrowsMessagesPath 61 Disk full: " + kNew + ".orven-test"), failing == 1);
      std::string stayed;
      for (const std::string name : {"1.wav", "2.wav", "3.wav"}) {
        const bool stays = world.files.Exists(world.messages + name);
        EXPECT_NE(stays, world.files.Exists(kNew + name)) << name;
        EXPECT_EQ(world.Logged("Message stayed behind: " + world.messages + name), stays && failing > 1);
        if (stays) stayed += "\n" + name;
      }
      ASSERT_EQ(world.dialogs.informations.size(), stayed.empty() ? 0U : 1U);
      const auto told = HasSubstr(failing == 1 ? kNew : stayed);
      EXPECT_THAT(world.dialogs.informations, testing::Each(told));
      world.MoveTo(world.messages);  // the person tries again when there is space
      EXPECT_EQ(world.files.Names(world.messages).size(), 4U);
    }
  }
}

TEST_F(MessageMoveTest, ACallDuringAMoveKeepsItsMessageEvenIfItWaitsToBeFiled) {
  CallAndWaitForRecording();
  bool hung_up = false;  // the caller hangs up while the second message is being moved
  FailWrites([&](const std::string& path) {
    if (path == kNew + "2.wav" && !std::exchange(hung_up, true)) line->HangUp();
    return false;
  });
  MoveTo();
  CallAndWaitForRecording();
  database_full = true;
  HangUp();
  MoveTo("/mnt/other/");
  database_full = false;
  Machine().filing.FileWaitingCalls();
  CallAndWaitForRecording();
  MoveTo("/mnt/last/");
  HangUp();
  for (std::size_t record = 4; record < 7; ++record)
    EXPECT_TRUE(files.Exists("/mnt/last/" + database.Field(record, kCallMassageName))) << record;
}

TEST_F(MessageMoveTest, AnInterruptedMoveContinuesWhenBothFoldersExist) {
  MoveAndKill();
  for (const auto& away : {kNew, messages}) {
    files.missing_folders = {away};
    dialogs.informations.clear();
    StartAndWait();
    EXPECT_THAT(dialogs.informations, ElementsAre(testing::AllOf(HasSubstr(kNew), HasSubstr(messages),
                                                                 HasSubstr("Path not found: " + away))));
    ExpectStored(messages, kNew);
    Crash();
  }
  files.missing_folders.clear();
  dialogs.informations.clear();
  files.Put(messages + "1.wav", TimedWave::Sound(5s));  // killed between copying and deleting
  StartAndWait();
  EXPECT_THAT(files.Names(kNew), ElementsAre("1.wav", "2.wav", "3.wav"));
  EXPECT_THAT(files.Names(messages), ElementsAre("none.wav"));
  ExpectStored(kNew);
  EXPECT_THAT(dialogs.informations, testing::IsEmpty());
}

TEST_F(MessageMoveTest, AnotherFolderAfterAnInterruptedMoveNeedsConsent) {
  MoveAndKill();
  files.missing_folders = {kNew};
  for (const auto& other : {std::string("/mnt/other/"), messages}) {
    registry.Set("MassagesPath", messages);
    registry.Set("MassagesPathNext", kNew);
    dialogs.yes = false;
    StartAndWait();
    MoveTo(other);
    EXPECT_THAT(dialogs.questions.back(), HasSubstr(kNew));
    ExpectStored(messages, kNew);
    dialogs.yes = true;
    MoveTo(other);
    ExpectStored(other);
    Crash();
  }
  EXPECT_TRUE(files.Exists("/mnt/other/2.wav"));
}

TEST_F(MessageMoveTest, SettingsThatCannotBeStoredLoseNoMessage) {
  registry.refuse_writes = true;
  MoveTo();
  EXPECT_EQ(files.Names(messages).size(), 4U);
  EXPECT_THAT(dialogs.informations, ElementsAre(HasSubstr("settings cannot be stored")));
  registry.refuse_writes = false;
  FailWrites([&](const std::string& path) {
    if (path == kNew + "3.wav") registry.refuse_writes = true;
    return false;
  });
  MoveTo();
  EXPECT_EQ(Machine().folders.Serving(), kNew);
  ExpectStored(messages, kNew);
  files.before_write = [](const std::string&) {};
  registry.refuse_writes = false;
  Crash();
  StartAndWait();
  ExpectStored(kNew);
  EXPECT_EQ(dialogs.informations.size(), 2U);
}

TEST_F(MessageMoveTest, AMessageIsFoundInEitherFolderDuringAMove) {
  MoveAndKill();
  files.missing_folders = {kNew};
  StartAndWait();
  files.missing_folders.clear();
  auto& machine = Machine();
  machine.ListView1.Select(4);
  machine.player.Play();
  EXPECT_EQ(WavePlay.played.back().first, kNew + "1.wav");
  for (const auto row : {4, 3}) {  // the rows of 1.wav and 2.wav
    machine.ListView1.Select(row);
    dialogs.chosen = "/home/me/" + std::to_string(row);
    machine.list_commands.Save();
    EXPECT_EQ(files.Content(*dialogs.chosen), TimedWave::Sound(5s));
  }
  CallAndWaitForAnswer();
  Press("4711*");
  RunFor(16s);
  EXPECT_EQ(Wave1.played.back().first, kNew + "1.wav");
  Call call;
  call.message_file_name = "1.wav";
  call.message_left = true;
  machine.actions.DoActions("Mail", call);
  EXPECT_EQ(Mail1.mails.at(0).attachment, kNew + "1.wav");
  machine.ListView1.Select(4);
  dialogs.yes = true;
  machine.list_commands.Delete();
  RunFor(1s);
  EXPECT_FALSE(files.Exists(kNew + "1.wav"));
}

}  // namespace
}  // namespace orven::test
