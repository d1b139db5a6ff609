// SPDX-License-Identifier: GPL-3.0-or-later
#include <gmock/gmock.h>

#include "platform/runtime_error.h"
#include "records/call_fields.h"
#include "support/world.h"

namespace orven::test {
namespace {

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
    world.Machine().calls.RelocateMessages(target, [this](bool moved) { stored = moved ? target : ""; });
    world.RunFor(100ms);
  }
  int Copies(const std::string& name) {
    return int(world.files.Exists(world.messages + name)) + int(world.files.Exists(target + name));
  }

  World world;
  const std::string target = "/mnt/new/";
  std::string stored;
};

TEST_F(Relocation, MovesTheMessagesAndNothingElse) {
  world.files.Delete(world.messages + "2.wav");
  Relocate();
  EXPECT_THAT(world.files.Names(target), ElementsAre("1.wav", "3.wav"));
  EXPECT_THAT(world.files.Names(world.messages), ElementsAre("none.wav"));
  EXPECT_EQ(stored, target);
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
  EXPECT_EQ(stored, "");
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
      EXPECT_EQ(move.stored, failing == 1 ? "" : move.target);
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
      move.world.Machine().calls.RelocateMessages(move.world.messages);
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
  world.Machine().calls.RelocateMessages("/mnt/other/");
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
  World world;
  for (const char* name : {"1.wav", "2.wav"}) world.AddMessage(name, 1s);
  world.background.takes = 1s;
  world.Start();
  world.Machine().MoveMessages("/mnt/new/");
  world.RunFor(1s + 500ms);
  EXPECT_EQ(world.registry.Text("MassagesPath"), world.messages);
  EXPECT_TRUE(world.files.Exists("/mnt/new/1.wav"));
  World next;  // with what the disk and the registry have now
  for (const auto& folder : {world.messages, std::string("/mnt/new/")}) {
    for (const auto& name : world.files.Names(folder)) next.files.Put(folder + name, TimedWave::Sound(1s));
  }
  next.registry = world.registry;
  next.database.Records() = world.database.Records();
  next.Start();
  next.RunFor(1s);
  EXPECT_THAT(next.files.Names("/mnt/new/"), ElementsAre("1.wav", "2.wav"));
  EXPECT_EQ(next.registry.Text("MassagesPath"), "/mnt/new/");
  EXPECT_EQ(next.registry.Text("MassagesPathNext"), kNotFound);
  EXPECT_THAT(next.dialogs.informations, IsEmpty());
}

}  // namespace
}  // namespace orven::test
