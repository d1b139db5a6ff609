// SPDX-License-Identifier: GPL-3.0-or-later
// What becomes of a call's mail when the program is killed.
#include <gmock/gmock.h>

#include "support/world.h"

namespace orven::test {
namespace {

/// What a kill at one moment leaves: the files, the records, and how many mails were sent.
struct Moment {
  MemoryFiles files;
  std::vector<MemoryDatabase::Fields> records;
  std::size_t mails;
};

void StartWithActions(World& world) {
  for (const char* setting : {"pMailTo", "pAppTo"}) world.registry.Set(setting, "1");
  world.registry.Set("MailTo", "me@example.org");
  world.Start();
}

class DueMail : public testing::TestWithParam<bool>, public World {};

/// The program is killed before each write of a call's end, whose record finds room in the database or not.
TEST_P(DueMail, IsSentOnceAndTheProgramIsNotStartedAgain) {
  StartWithActions(*this);
  CallAndWaitForRecording();
  RunFor(2s);
  database_full = GetParam();
  std::vector<Moment> moments;
  const auto take = [&] { moments.push_back({files, database.Records(), Mail1.mails.size()}); };
  files.before_write = [&](const std::string&) { take(); };
  database.before_write = [&, write = database.before_write] { take(), write(); };
  HangUp();
  take();
  EXPECT_GT(moments.size(), 10U);
  EXPECT_EQ(1U, shell.attempts);

  std::vector<std::size_t> sent;
  for (const auto& killed : moments) {
    World next;
    for (const std::string folder : {"/home/orven/", "/home/orven/Messages/"}) {
      for (const auto& name : killed.files.Names(folder))
        next.files.Put(folder + name, killed.files.Content(folder + name));
    }
    next.database.Records() = killed.records;
    StartWithActions(next);
    next.RunFor(60s);
    sent.push_back(killed.mails + next.Mail1.mails.size());
    EXPECT_TRUE(sent.back() > 0 || killed.records.empty()) << "filed, and its mail is forgotten";
    for (const auto& mail : next.Mail1.mails) EXPECT_TRUE(next.files.Exists(mail.attachment));
    EXPECT_EQ(0U, next.shell.attempts);
    EXPECT_EQ(1U, next.database.Records().size());
    EXPECT_FALSE(next.files.Exists("/home/orven/Call.journal"));
  }
  EXPECT_EQ(0U, sent.front()) << "a call that was cut off sets off nothing";
  EXPECT_EQ(1U, sent.back());
  EXPECT_LE(std::ranges::count(sent, 2U), 1) << "only a kill between the mail and the note that it was sent";
  for (auto& mails : sent) mails = std::min<std::size_t>(mails, 1);
  EXPECT_TRUE(std::ranges::is_sorted(sent)) << "a mail that was due stays due";
}

INSTANTIATE_TEST_SUITE_P(DatabaseFull, DueMail, testing::Bool());

}  // namespace
}  // namespace orven::test
