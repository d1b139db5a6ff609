// SPDX-License-Identifier: GPL-3.0-or-later
// What becomes of a call's mail when the program is killed.
#include <gmock/gmock.h>

#include <map>

#include "support/world.h"

namespace orven::test {
namespace {

constexpr const char* kJournal = "/home/orven/Call.journal";

/// What is left of the program when it is killed at one moment.
struct Moment {
  std::map<std::string, std::string> files;
  std::vector<MemoryDatabase::Fields> records;
  std::size_t mails;
  std::size_t programs;
};

Moment MomentOf(World& world) {
  Moment moment{{}, world.database.Records(), world.Mail1.mails.size(), world.shell.attempts};
  for (const std::string folder : {"/home/orven/", "/home/orven/Messages/"}) {
    for (const auto& name : world.files.Names(folder))
      moment.files[folder + name] = world.files.Content(folder + name);
  }
  return moment;
}

void AskForActions(World& world) {
  for (const char* setting : {"pMailTo", "pAppTo"}) world.registry.Set(setting, "1");
  world.registry.Set("MailTo", "me@example.org");
}

/// The moments of a call's end, from before its message has its name on.
std::vector<Moment> MomentsOfAnEnd() {
  World world;
  AskForActions(world);
  world.Start();
  world.CallAndWaitForRecording();
  world.RunFor(2s);
  std::vector<Moment> moments;
  const auto take = [&] { moments.push_back(MomentOf(world)); };
  world.files.before_write = [&](const std::string&) { take(); };
  world.database.before_write = take;
  world.HangUp();
  take();
  return moments;
}

/// The program is started on what the kill has left.
void StartOn(const Moment& killed, World& world) {
  AskForActions(world);
  for (const auto& [path, content] : killed.files) world.files.Put(path, content);
  world.database.Records() = killed.records;
  world.Start();
  world.RunFor(60s);
}

TEST(DueMail, IsHandedOverByTheNextStartAndTheProgramIsNotStartedAgain) {
  int twice = 0;
  bool due = false;
  const auto moments = MomentsOfAnEnd();
  for (const auto& killed : moments) {
    World world;
    StartOn(killed, world);
    const auto mails = killed.mails + world.Mail1.mails.size();
    const auto journal = killed.files.find(kJournal);
    due = due || (journal != killed.files.end() && journal->second.find("mail\t") != std::string::npos);
    // A call that was cut off before its end sets off nothing.
    EXPECT_EQ(due ? 1U : 0U, std::min<std::size_t>(mails, 1));
    EXPECT_TRUE(due || killed.records.empty()) << "filed, and its mail is forgotten";
    if (mails == 2) ++twice;
    EXPECT_LE(mails, 2U);
    for (const auto& mail : world.Mail1.mails) EXPECT_TRUE(world.files.Exists(mail.attachment));
    EXPECT_EQ(0U, world.shell.attempts);
    EXPECT_EQ(1U, world.database.Records().size());
    EXPECT_FALSE(world.files.Exists(kJournal));
  }
  EXPECT_GT(moments.size(), 10U);
  EXPECT_TRUE(due);
  EXPECT_EQ(1U, moments.back().programs);
  EXPECT_LE(twice, 1) << "only between the mail and the note that it is on its way";
}

/// A call that waits for its record has been mailed about all the same.
TEST(DueMail, OfACallThatCouldNotBeFiledIsSentOnce) {
  World world;
  AskForActions(world);
  world.Start();
  world.CallAndWaitForRecording();
  world.RunFor(2s);
  world.database_full = true;
  world.HangUp();
  EXPECT_EQ(1U, world.Mail1.mails.size());
  world.Crash();
  world.database_full = false;
  world.Start();
  world.RunFor(60s);
  EXPECT_EQ(1U, world.database.Records().size());
  EXPECT_EQ(1U, world.Mail1.mails.size());
}

}  // namespace
}  // namespace orven::test
