// SPDX-License-Identifier: GPL-3.0-or-later
#include "actions/actions_engine.h"

#include <gmock/gmock.h>

#include "actions/actions_dialog.h"
#include "base/runtime_error.h"
#include "support/world.h"

namespace orven::test {
namespace {

using testing::ElementsAre;

TEST(CallParameters, FillTheFirstOfEachPlaceholderInOrder) {
  const struct {
    const char *text, *name, *number, *filled;
  } cases[] = {{"<TIME> <DATE> <MESSAGE_PATH> <NAME> <NUMBER>", "Anna", "555", "14:05 12/31 m.wav Anna 555"},
               {"<NAME><NAME> <name>", "Anna", "555", "Anna<NAME> <name>"},
               {"<NUMBER>", "Anna", "<NAME>", "Anna"},      // a value that contains a later placeholder
               {"<NAME>", "<NUMBER>", "555", "<NUMBER>"}};  // a value that contains an earlier one
  for (const auto& [text, name, number, filled] : cases) {
    std::string result = text;
    EXPECT_EQ(SubstituteParameters(result, {name, number, "14:05", "12/31", "m.wav"}), filled);
    EXPECT_EQ(result, filled);
  }
  auto far = std::string(40'000, 'x') + "<NAME>";
  EXPECT_THROW(SubstituteParameters(far, {}), RuntimeError);
}

TEST(MailAddress, IsChecked) {
  for (const char* good : {"a@bc.de", "a_b-c@d.ef", "a@b.c.d"}) EXPECT_TRUE(IsMailAddress(good)) << good;
  for (const char* bad : {"", "a@b.c", "anna.example.org", "a.b@example", "a@b@c.de", "a b@c.de", "a@b..de",
                          "a+b@cd.ef", "abcdefghijklmnopqrstuvwxyz'@example.org"})
    EXPECT_FALSE(IsMailAddress(bad)) << bad;
}

class ActionsTest : public testing::Test, public World {
 protected:
  ActionsTest() {
    const std::pair<const char*, const char*> settings[] = {
        {"pMailTo", "1"}, {"MailTo", "me@example.org"},    {"SMTPServer", "mail.example.org"},
        {"pAppTo", "1"},  {"MailFrom", "box@example.org"}, {"AppTo", "/bin/notify \"<NAME>\" <NUMBER>"}};
    for (const auto& [name, value] : settings) registry.Set(name, value);
    Start().RunFor(1s);
  }
  void LeaveAMessage(const std::string& name) {
    CallAndWaitForAnswer();
    line->CallerId(name, "555");
    time.RunUntil([this] { return Wave1.IsRecording(); }, 60s);
    RunFor(2s);
    HangUp();
  }
};

TEST_F(ActionsTest, MailAndProgramFollowACallOnce) {
  LeaveAMessage("Anna");
  EXPECT_THAT(Mail1.mails,
              ElementsAre(ScriptedMail::Mail{"mail.example.org", "box@example.org", "ORVEN", "me@example.org",
                                             "New Call From Anna - 555", CurrentCall().message_path,
                                             "Caller: Anna\nNumber: 555\nDate: 12/31/2003\nTime: " +
                                                 CurrentCall().time + "\nMessage: 2 seconds, attached\n"}));
  EXPECT_THAT(shell.started, ElementsAre(std::pair("/bin/notify \"Anna\" 555", 0)));
  Machine().actions.DoActions("App", Machine().call);
  EXPECT_EQ(shell.started.size(), 1U);

  Machine().settings.pAppToBG = 1;
  LeaveAMessage("Ben");
  EXPECT_THAT(shell.started.back(), testing::Pair("/bin/notify \"Anna\" 555", 1))
      << "the template stays filled until the settings are read again";
  EXPECT_EQ(shell.environment, (Environment{{"ORVEN_NAME", "Ben"},
                                            {"ORVEN_NUMBER", "555"},
                                            {"ORVEN_DATE", CurrentCall().date},
                                            {"ORVEN_TIME", CurrentCall().time},
                                            {"ORVEN_MESSAGE", CurrentCall().message_path},
                                            {"ORVEN_LENGTH", "2"}}));
  Machine().store.GetMainAction();
  LeaveAMessage("Ben");
  EXPECT_EQ(shell.started.back().first, "/bin/notify \"Ben\" 555");
  shell.before_start = [] { throw RuntimeError(ErrorNumber::FileNotFound, "/bin/notify"); };
  LeaveAMessage("Anna");
  EXPECT_THAT(SystemLog(), testing::Contains("Error Send To APP ->53 File not found: /bin/notify"));
  shell.before_start = [] {};
  Machine().settings.ActionsMailAllCalls = 1;
  CallAndWaitForAnswer();
  HangUp();
  EXPECT_THAT(Mail1.mails.back().text, testing::HasSubstr("\nNo message was left.\n"));
  EXPECT_THAT(shell.environment, testing::Contains(testing::Pair("ORVEN_MESSAGE", "")));
}

TEST_F(ActionsTest, ShowsTheProgressOfAMail) {
  auto& mail = *Mail1.events;
  mail.Progress(200, 25);
  EXPECT_EQ(views.Status(), "Send Mail : 12 %") << "halves are rounded to even";
  mail.Progress(0, 10);
  EXPECT_EQ(views.Status(), "Send Mail : 12 %");
  mail.Done("me@example.org");
  EXPECT_TRUE(Logged("Mail was sent to me@example.org"));
  EXPECT_EQ(views.Status(), "Mail Was Sent");
  RunFor(3100ms);
  EXPECT_EQ(views.Status(), "Monitoring Sim");

  mail.Done("me@example.org");
  line->Offer();
  RunFor(10ms);
  line->CallerId("Anna", "1");
  RunFor(4s);
  EXPECT_EQ(views.Status(), "Caller ID Information") << "a later text is not replaced";
  mail.Progress(200, 200);
  mail.Error("me@example.org", "the server said no");
  EXPECT_NE(views.Status(), "Send Mail : 100 %");
  EXPECT_TRUE(Logged("Error Sending To Mail To : me@example.org Becouse:the server said no"));

  const std::tuple<std::size_t, std::size_t, const char*> states[] = {
      {1, 0, "A mail waits: no answer"},
      {2, 0, "2 mails wait: no answer"},
      {0, 1, "A mail failed: no answer"},
      {0, 3, "3 mails failed: no answer"},
      {2, 1, "Mails: 1 failed, 2 not sent yet: no answer"},
      {0, 0, ""}};
  for (const auto& [waiting, failed, shown] : states) {
    Mail1.state = {waiting, failed, false, "no answer"};
    mail.StateChanged();
    EXPECT_EQ(views.mails, shown);
  }
}

/// The state that a kill at one moment leaves: files, records, and the number of mails sent.
struct Moment {
  MemoryFiles files;
  std::vector<MemoryDatabase::Fields> records;
  std::map<std::int64_t, OpenCall> open;
  std::size_t mails;
};

void StartWithActions(World& world) {
  for (const char* setting : {"pMailTo", "pAppTo"}) world.registry.Set(setting, "1");
  world.registry.Set("MailTo", "me@example.org");
  world.Start();
}

class DueMail : public testing::TestWithParam<bool>, public World {};

/// Kills the program before each write at the end of a call and checks that the call's mail is sent. The
/// parameter tells whether the database is full.
TEST_P(DueMail, IsSentOnceAndTheProgramIsNotStartedAgain) {
  StartWithActions(*this);
  CallAndWaitForRecording();
  RunFor(2s);
  database_full = GetParam();
  std::vector<Moment> moments;
  const auto take = [&] {
    moments.push_back({files, database.Records(), database.open, Mail1.mails.size()});
  };
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
    next.database.open = killed.open;
    StartWithActions(next);
    next.RunFor(60s);
    sent.push_back(killed.mails + next.Mail1.mails.size());
    EXPECT_TRUE(sent.back() > 0 || killed.records.empty()) << "the call was filed, but its mail was lost";
    for (const auto& mail : next.Mail1.mails) {
      EXPECT_TRUE(next.files.Exists(mail.attachment));
      EXPECT_THAT(mail.text, testing::HasSubstr("attached"));
    }
    EXPECT_EQ(0U, next.shell.attempts);
    EXPECT_EQ(1U, next.database.Records().size());
    EXPECT_TRUE(next.database.open.empty() && next.files.List("/home/orven/", ".call-*").empty());
  }
  EXPECT_EQ(0U, sent.front()) << "an interrupted call triggers no action";
  EXPECT_EQ(1U, sent.back());
  EXPECT_LE(std::ranges::count(sent, 2U), GetParam() ? 2 : 1)
      << "only a kill between sending and noting it may send it twice";
  for (auto& mails : sent) mails = std::min<std::size_t>(mails, 1);
  EXPECT_TRUE(std::ranges::is_sorted(sent)) << "a mail that is due stays due";
}

INSTANTIATE_TEST_SUITE_P(DatabaseFull, DueMail, testing::Bool());

}  // namespace
}  // namespace orven::test
