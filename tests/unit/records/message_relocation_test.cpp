// SPDX-License-Identifier: GPL-3.0-or-later
#include <gmock/gmock.h>

#include "base/runtime_error.h"
#include "records/call.h"
#include "support/world.h"

namespace orven::test {
namespace {

using testing::AllOf;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

/// A machine with three messages, a call without one, and a file that belongs to no call.
struct Relocation : testing::Test {
  Relocation() {
    for (const char* name : {"1.wav", "2.wav", "3.wav"}) world.AddMessage(name, 1s);
    world.AddCallWithoutMessage();
    world.files.Put(world.messages + "none.wav", "a stranger's");
    world.Start();
  }
  void TestBody() override {}
  void Relocate() {
    world.Machine().move.Begin(target);
    world.RunFor(100ms);
  }
  std::string Stored() { return world.registry.Text("MassagesPath"); }
  int Copies(const std::string& name) {
    return int(world.files.Exists(world.messages + name)) + int(world.files.Exists(target + name));
  }

  World world;
  const std::string target = "/mnt/new/";
};

/// Where the program is started again: with what the first one has left on the disk and in the registry.
void TakeOver(World& next, World& killed) {
  for (const auto& folder : {killed.messages, std::string("/mnt/new/")}) {
    for (const auto& name : killed.files.Names(folder)) {
      next.files.Put(folder + name, killed.files.Content(folder + name));
    }
  }
  next.registry = killed.registry;
  next.registry.refuse_writes = false;
  next.database.Records() = killed.database.Records();
}

/// A program that was killed when it had moved 1.wav, and not 2.wav.
struct Killed : World {
  Killed() {
    for (const char* name : {"1.wav", "2.wav"}) AddMessage(name, 5s);
    background.takes = 1s;
    Start();
    Machine().move.Begin("/mnt/new/");
    RunFor(1s + 500ms);
  }
};

TEST_F(Relocation, MovesTheMessagesAndNothingElse) {
  world.files.Delete(world.messages + "2.wav");
  Relocate();
  EXPECT_THAT(world.files.Names(target), ElementsAre("1.wav", "3.wav"));
  EXPECT_THAT(world.files.Names(world.messages), ElementsAre("none.wav"));
  EXPECT_EQ(Stored(), target);
  EXPECT_EQ(world.shared.messages_path, target);
  EXPECT_EQ(world.Machine().settings.MassagesPath, target);
  EXPECT_TRUE(world.Logged("Message is missing: " + world.messages + "2.wav"));
  EXPECT_THAT(world.dialogs.informations, IsEmpty()) << "a message that was lost before is no news";
}

TEST_F(Relocation, AFolderThatCannotBeWrittenIsRefused) {
  world.files.before_write = [&](const std::string& path) {
    if (path.starts_with(target)) throw RuntimeError(ErrorNumber::PermissionDenied, path);
  };
  Relocate();
  EXPECT_THAT(world.dialogs.informations, ElementsAre(HasSubstr("/mnt/new/")));
  EXPECT_EQ(world.files.Names(world.messages).size(), 4U);
  EXPECT_EQ(Stored(), world.messages);
  EXPECT_EQ(world.shared.messages_path, world.messages);
  EXPECT_THAT(world.SystemLog(), Contains(HasSubstr("ErrcmdBrowsMessagesPath 70 Permission denied")));
}

TEST(RelocationSteps, AFailureAtAnyStepLosesNothing) {
  constexpr int kSteps = 5;  // a file is tried and deleted, three are moved
  for (int failing = 1; failing <= kSteps; ++failing) {
    for (const bool for_good : {false, true}) {
      SCOPED_TRACE(std::to_string(failing) + (for_good ? " and on" : ""));
      Relocation move;
      int step = 0;
      move.world.files.before_write = [&](const std::string& path) {
        if (!path.starts_with(move.target)) return;
        ++step;
        if (for_good ? step >= failing : step == failing) throw RuntimeError(ErrorNumber::DiskFull, path);
      };
      move.Relocate();
      move.world.files.before_write = [](const std::string&) {};
      EXPECT_EQ(move.Stored(), failing == 1 ? move.world.messages : move.target);
      const auto& boxes = move.world.dialogs.informations;
      for (const char* name : {"1.wav", "2.wav", "3.wav"}) {
        EXPECT_EQ(move.Copies(name), 1) << name;
        const bool stayed = failing > 1 && move.world.files.Exists(move.world.messages + name);
        if (stayed) {
          EXPECT_THAT(boxes, ElementsAre(HasSubstr(name)));
        }
        EXPECT_EQ(move.world.Logged("Message stayed behind: " + move.world.messages + name), stayed);
      }
      EXPECT_EQ(boxes.size(),
                failing == 1 || move.world.files.Names(move.world.messages).size() > 1 ? 1U : 0U);
      // Nothing is lost for good: the person comes back when there is room.
      move.world.Machine().move.Begin(move.world.messages);
      move.world.RunFor(100ms);
      for (const char* name : {"1.wav", "2.wav", "3.wav"}) {
        EXPECT_TRUE(move.world.files.Exists(move.world.messages + name)) << name;
      }
    }
  }
}

TEST_F(Relocation, WhatIsThereAlreadyIsNotOverwritten) {
  world.files.Put(target + "2.wav", "older");
  Relocate();
  EXPECT_EQ(world.files.Content(target + "2.wav"), "older");
  EXPECT_EQ(world.files.Content(world.messages + "2.wav"), TimedWave::Sound(1s));
  EXPECT_THAT(world.dialogs.informations, ElementsAre(HasSubstr("\n2.wav")));
  EXPECT_TRUE(world.Logged("Message stayed behind: " + world.messages + "2.wav"));
}

TEST_F(Relocation, ACallMeanwhileKeepsItsMessage) {
  world.registry.Set("MaxRec", "1");
  world.CallAndWaitForRecording();
  world.RunFor(2s);
  // The disk is slow: the caller hangs up while the second message is being moved.
  bool hung_up = false;
  world.files.before_write = [&](const std::string& path) {
    if (path == target + "2.wav" && !std::exchange(hung_up, true)) world.line->HangUp();
  };
  Relocate();
  ASSERT_EQ(world.database.Records().size(), 5U);
  EXPECT_EQ(world.database.Field(4, kType), "2");
  EXPECT_EQ(Copies(world.database.Field(4, kCallMassageName)), 1);
  EXPECT_TRUE(world.files.Exists(target + world.database.Field(4, kCallMassageName)));

  world.CallAndWaitForRecording();
  world.RunFor(3s);
  world.Machine().move.Begin("/mnt/other/");
  world.RunFor(100ms);
  world.HangUp();
  EXPECT_TRUE(world.files.Exists("/mnt/other/" + world.database.Field(5, kCallMassageName)))
      << "recorded across the move";
}

TEST_F(Relocation, ACallThatWaitsToBeFiledIsMovedToo) {
  world.CallAndWaitForRecording();
  world.database_full = true;
  world.HangUp();
  Relocate();
  world.database_full = false;
  world.Machine().calls.FileWaitingCalls();
  EXPECT_TRUE(world.files.Exists(target + world.database.Field(4, kCallMassageName)));
}

TEST(RelocationSteps, AMoveThatTheEndBreaksOffGoesOnAtTheNextStart) {
  Killed killed;
  EXPECT_EQ(killed.registry.Text("MassagesPath"), killed.messages);
  World next;
  TakeOver(next, killed);
  next.files.Put(next.messages + "1.wav", TimedWave::Sound(5s));  // killed between copying and deleting
  next.Start().RunFor(1s);
  EXPECT_THAT(next.files.Names("/mnt/new/"), ElementsAre("1.wav", "2.wav"));
  EXPECT_THAT(next.files.Names(next.messages), IsEmpty());
  EXPECT_EQ(next.registry.Text("MassagesPath"), "/mnt/new/");
  EXPECT_EQ(next.registry.Text("MassagesPathNext"), kNotFound);
  EXPECT_THAT(next.dialogs.informations, IsEmpty());
}

TEST(RelocationSteps, AMoveWhoseFoldersAreAwayWaitsForThem) {
  Killed killed;
  for (const auto& away : {std::string("/mnt/new/"), killed.messages}) {
    World next;
    TakeOver(next, killed);
    next.files.missing_folders = {away};
    next.Start().RunFor(1s);
    EXPECT_THAT(next.dialogs.informations, ElementsAre(AllOf(HasSubstr("/mnt/new/"), HasSubstr(next.messages),
                                                             HasSubstr("Path not found: " + away))));
    EXPECT_EQ(next.registry.Text("MassagesPath"), next.messages);
    next.files.missing_folders.clear();
    World third;
    TakeOver(third, next);
    third.Start().RunFor(1s);
    EXPECT_THAT(third.files.Names("/mnt/new/"), ElementsAre("1.wav", "2.wav"));
    EXPECT_EQ(third.registry.Text("MassagesPath"), "/mnt/new/");
  }
}

TEST(RelocationSteps, AnotherFolderThanThatOfABrokenOffMoveNeedsConsent) {
  for (const auto& other : {std::string("/mnt/other/"), std::string("/home/orven/Messages/")}) {
    Killed killed;
    World next;
    TakeOver(next, killed);
    next.files.missing_folders = {"/mnt/new/"};
    next.Start().RunFor(1s);
    next.Machine().move.Begin(other);
    next.RunFor(1s);
    EXPECT_THAT(next.dialogs.questions, ElementsAre(HasSubstr("/mnt/new/")));
    EXPECT_EQ(next.registry.Text("MassagesPathNext"), "/mnt/new/");
    EXPECT_THAT(next.files.Names(next.messages), ElementsAre("2.wav"));
    next.dialogs.yes = true;
    next.Machine().move.Begin(other);
    next.RunFor(1s);
    EXPECT_EQ(next.registry.Text("MassagesPath"), other);
    EXPECT_EQ(next.registry.Text("MassagesPathNext"), kNotFound);
    EXPECT_THAT(next.files.Names(other), ElementsAre("2.wav"));
  }
}

TEST_F(Relocation, SettingsThatCannotBeStoredLoseNoMessage) {
  world.registry.refuse_writes = true;
  Relocate();
  EXPECT_EQ(world.files.Names(world.messages).size(), 4U);
  EXPECT_THAT(world.dialogs.informations, ElementsAre(HasSubstr("settings cannot be stored")));

  world.registry.refuse_writes = false;
  world.files.before_write = [&](const std::string& path) {
    if (path == target + "3.wav") world.registry.refuse_writes = true;
  };
  Relocate();
  EXPECT_EQ(world.shared.messages_path, target);
  EXPECT_EQ(world.dialogs.informations.size(), 2U);
  World next;
  TakeOver(next, world);
  EXPECT_EQ(next.registry.Text("MassagesPath"), world.messages);
  next.Start().RunFor(1s);
  EXPECT_EQ(next.registry.Text("MassagesPath"), target);
  EXPECT_THAT(next.dialogs.informations, IsEmpty());
}

TEST(RelocationSteps, AMessageIsFoundInWhicheverFolderItIs) {
  Killed world;  // which goes on
  auto& machine = world.Machine();
  for (const auto& [row, path] :
       {std::pair(2, "/mnt/new/1.wav"), std::pair(1, "/home/orven/Messages/2.wav")}) {
    machine.ListView1.Select(row);
    machine.player.Play();
    EXPECT_EQ(world.WavePlay.played.back().path, path);
    world.dialogs.save_as = "/home/me/" + std::to_string(row);
    machine.list_commands.Save();
    EXPECT_EQ(world.files.Content(*world.dialogs.save_as), TimedWave::Sound(5s));
  }
  machine.ListView1.Select(2);
  world.dialogs.yes = true;
  machine.list_commands.Delete();
  EXPECT_FALSE(world.files.Exists("/mnt/new/1.wav"));
  EXPECT_FALSE(world.Logged("ErrDeleteItemIndex "));
}

TEST(RelocationSteps, AMessageThatMovesIsHeardByTelephoneAndMailed) {
  Killed killed;
  World next;
  TakeOver(next, killed);
  next.files.missing_folders = {"/mnt/new/"};
  next.Start().RunFor(1s);
  next.files.missing_folders.clear();
  next.CallAndWaitForAnswer();
  next.Press("4711*");
  next.RunFor(11s);
  EXPECT_EQ(next.Wave1.played.back().path, "/mnt/new/1.wav");
  Call call;
  call.message_file_name = "1.wav";
  call.message_left = true;
  next.Machine().actions.DoActions("Mail", call);
  ASSERT_EQ(next.Mail1.mails.size(), 1U);
  EXPECT_EQ(next.Mail1.mails[0].attachment, "/mnt/new/1.wav");
}

}  // namespace
}  // namespace orven::test
