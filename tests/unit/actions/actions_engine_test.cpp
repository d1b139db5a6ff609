// SPDX-License-Identifier: GPL-3.0-or-later
#include "actions/actions_engine.h"

#include <gmock/gmock.h>

#include "actions/actions_dialog.h"
#include "base/runtime_error.h"
#include "support/world.h"

namespace orven::test {
namespace {

using testing::Contains;
using testing::ElementsAre;

TEST(CallParameters, FillTheFirstOfEachPlaceholderInOrder) {
  const struct {
    const char *text, *name, *number, *filled;
  } cases[] = {{"<TIME> <DATE> <MESSAGE_PATH> <NAME> <NUMBER>", "Anna", "555", "14:05 12/31 m.wav Anna 555"},
               {"<NAME><NAME> <name>", "Anna", "555", "Anna<NAME> <name>"},
               {"<NUMBER>", "Anna", "<NAME>", "Anna"},      // a value with a later placeholder
               {"<NAME>", "<NUMBER>", "555", "<NUMBER>"}};  // a value with an earlier one
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
                                             "New Call From Anna - 555", CurrentCall().message_path}));
  EXPECT_THAT(shell.started, ElementsAre(std::pair("/bin/notify \"Anna\" 555", 0)));
  Machine().actions.DoActions("App", Machine().call);
  EXPECT_EQ(shell.started.size(), 1U);

  Machine().settings.pAppToBG = 1;
  LeaveAMessage("Ben");
  EXPECT_THAT(shell.started.back(), testing::Pair("/bin/notify \"Anna\" 555", 1))
      << "the template stays filled until the settings are read again";
  Machine().store.GetMainAction();
  LeaveAMessage("Ben");
  EXPECT_EQ(shell.started.back().first, "/bin/notify \"Ben\" 555");
  shell.before_start = [] { throw RuntimeError(ErrorNumber::FileNotFound, "/bin/notify"); };
  LeaveAMessage("Anna");
  EXPECT_THAT(SystemLog(), Contains("Error Send To APP ->53 File not found: /bin/notify"));
}

TEST_F(ActionsTest, ShowsTheProgressOfAMail) {
  auto& mail = *Mail1.events;
  mail.Progress(200, 25);
  EXPECT_EQ(views.Status(), "Send Mail : 12 %") << "half to even";
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
}

}  // namespace
}  // namespace orven::test
