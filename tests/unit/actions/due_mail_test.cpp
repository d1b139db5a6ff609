// SPDX-License-Identifier: GPL-3.0-or-later
// What becomes of a call's mail when the program is killed.
#include <gmock/gmock.h>

#include <map>

#include "support/world.h"

namespace orven::test {
namespace {

/// What a kill at one moment leaves: the files, the records, and what was sent and started by then.
struct Moment {
  std::map<std::string, std::string> files;
  std::vector<MemoryDatabase::Fields> records;
  std::size_t mails, programs;
};

Moment MomentOf(World& world) {
  Moment moment{{}, world.database.Records(), world.Mail1.mails.size(), world.shell.attempts};
  for (const std::string folder : {"/home/orven/", "/home/orven/Messages/"}) {
    for (const auto& name : world.files.Names(folder))
      moment.files[folder + name] = world.files.Content(folder + name);
  }
  return moment;
}

void StartWithActions(World& world) {
  for (const char* setting : {"pMailTo", "pAppTo"}) world.registry.Set(setting, "1");
  world.registry.Set("MailTo", "me@example.org");
  world.Start();
}

/// Before each write of a call's end, whose record finds room in the database or not.
std::vector<Moment> MomentsOfAnEnd(bool database_full) {
  World world;
  StartWithActions(world);
  world.CallAndWaitForRecording();
  world.RunFor(2s);
  world.database_full = database_full;
  std::vector<Moment> moments;
  const auto take = [&] { moments.push_back(MomentOf(world)); };
  world.files.before_write = [&](const std::string&) { take(); };
  world.database.before_write = [&, write = world.database.before_write] {
    take();
    write();
  };
  world.HangUp();
  take();
  return moments;
}

class DueMail : public testing::TestWithParam<bool> {};

TEST_P(DueMail, IsSentOnceAndTheProgramIsNotStartedAgain) {
  std::vector<std::size_t> sent;
  const auto moments = MomentsOfAnEnd(GetParam());
  for (const auto& killed : moments) {
    World world;
    for (const auto& [path, content] : killed.files) world.files.Put(path, content);
    world.database.Records() = killed.records;
    StartWithActions(world);
    world.RunFor(60s);
    const auto mails = killed.mails + world.Mail1.mails.size();
    sent.push_back(mails);
    EXPECT_TRUE(mails > 0 || killed.records.empty()) << "filed, and its mail is forgotten";
    for (const auto& mail : world.Mail1.mails) EXPECT_TRUE(world.files.Exists(mail.attachment));
    EXPECT_EQ(0U, world.shell.attempts);
    EXPECT_EQ(1U, world.database.Records().size());
    EXPECT_FALSE(world.files.Exists("/home/orven/Call.journal"));
  }
  EXPECT_GT(moments.size(), 10U);
  EXPECT_EQ(1U, moments.back().programs);
  EXPECT_EQ(0U, sent.front()) << "a call that was cut off sets off nothing";
  EXPECT_EQ(1U, sent.back());
  EXPECT_LE(std::ranges::count(sent, 2U), 1) << "only a kill between the mail and the note that it was sent";
  for (auto& mails : sent) mails = std::min<std::size_t>(mails, 1);
  EXPECT_TRUE(std::ranges::is_sorted(sent)) << "a mail that was due stays due";
}

INSTANTIATE_TEST_SUITE_P(DatabaseFull, DueMail, testing::Bool());

}  // namespace
}  // namespace orven::test
