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
using testing::IsEmpty;

TEST(CallParameters, FillTheFirstOfEachPlaceholderInOrder) {
  const CallParameters anna{"Anna", "555", "14:05", "12/31", "m.wav"};
  const auto filled = [](std::string text, const CallParameters& call) {
    const auto result = SubstituteParameters(text, call);
    EXPECT_EQ(text, result);
    return result;
  };
  EXPECT_EQ(filled("<TIME> <DATE> <MESSAGE_PATH> <NAME> <NUMBER>", anna), "14:05 12/31 m.wav Anna 555");
  EXPECT_EQ(filled("<NAME><NAME> <name>", anna), "Anna<NAME> <name>");
  EXPECT_EQ(filled("<NUMBER>", {"Anna", "<NAME>", "", "", ""}), "Anna") << "a value with a later placeholder";
  EXPECT_EQ(filled("<NAME>", {"<NUMBER>", "555", "", "", ""}), "<NUMBER>") << "a value with an earlier one";
  auto far = std::string(40'000, 'x') + "<NAME>";
  EXPECT_THROW(SubstituteParameters(far, anna), RuntimeError);
}

TEST(MailAddress, IsChecked) {
  for (const char* good : {"a@bc.de", "anna.garden@post.example.org", "a_b-c@d.ef", "a@b.c.d"}) {
    EXPECT_TRUE(IsMailAddress(good)) << good;
  }
  for (const char* bad :
       {"", "a@b.c", "anna.example.org", "anna@example", "a.b@example", "a@b@c.de", "a b@c.de", "a@b c.de",
        "\"a\"@b.de", "a@b..de", "a..b@c.de", "a,b@cd.ef", "a+b@cd.ef", "a;b@a-very-long-name.example.org",
        "abcdefghijklmnopqrstuvwxyz'@example.org"}) {
    EXPECT_FALSE(IsMailAddress(bad)) << bad;
  }
}

class ActionsTest : public testing::Test {
 protected:
  ActionsTest() {
    const std::pair<const char*, const char*> settings[] = {
        {"pMailTo", "1"}, {"MailTo", "me@example.org"},    {"SMTPServer", "mail.example.org"},
        {"pAppTo", "1"},  {"MailFrom", "box@example.org"}, {"AppTo", "/bin/notify \"<NAME>\" <NUMBER>"}};
    for (const auto& [name, value] : settings) world.registry.Set(name, value);
    world.Start().RunFor(1s);
  }
  void LeaveAMessage(const std::string& name) {
    world.CallAndWaitForAnswer();
    world.line->CallerId(name, "555");
    world.time.RunUntil([this] { return world.Wave1.IsRecording(); }, 60s);
    world.RunFor(2s);
    world.HangUp();
  }
  void HangUpWithoutAMessage() {
    world.line->Offer();
    world.RunFor(10ms);
    world.HangUp();
  }

  World world;
};

TEST_F(ActionsTest, MailAndProgramFollowACallOnce) {
  LeaveAMessage("Anna");
  EXPECT_THAT(world.Mail1.mails,
              ElementsAre(ScriptedMail::Mail{"mail.example.org", "box@example.org", "ORVEN", "me@example.org",
                                             "New Call From Anna - 555", world.CurrentCall().message_path}));
  EXPECT_THAT(world.shell.started, ElementsAre(std::pair("/bin/notify \"Anna\" 555", 0)));
  world.Machine().actions.DoActions("App", world.Machine().call);
  EXPECT_EQ(world.shell.started.size(), 1U);

  world.Machine().settings.pAppToBG = 1;
  LeaveAMessage("Ben");
  EXPECT_THAT(world.shell.started.back(), testing::Pair("/bin/notify \"Anna\" 555", 1))
      << "the template stays filled until the settings are read again";
  world.Machine().store.GetMainAction();
  LeaveAMessage("Ben");
  EXPECT_EQ(world.shell.started.back().first, "/bin/notify \"Ben\" 555");
  world.shell.before_start = [] { throw RuntimeError(ErrorNumber::FileNotFound, "/bin/notify"); };
  LeaveAMessage("Anna");
  EXPECT_THAT(world.SystemLog(), Contains("Error Send To APP ->53 File not found: /bin/notify"));
}

TEST_F(ActionsTest, ACallWithoutAMessageSetsOffNothingUnlessAllCallsDo) {
  EXPECT_THAT(world.LoggedBy([&] { HangUpWithoutAMessage(); }), testing::Not(Contains("Start Sending Mail")));
  EXPECT_THAT(world.Mail1.mails, IsEmpty());
  EXPECT_THAT(world.shell.started, IsEmpty());
  world.Machine().settings.ActionsMailAllCalls = 1;
  HangUpWithoutAMessage();
  EXPECT_EQ(world.Mail1.mails.size(), 1U);
  EXPECT_EQ(world.shell.started.size(), 1U);
}

TEST_F(ActionsTest, ShowsTheProgressOfAMail) {
  auto& mail = *world.Mail1.events;
  mail.Progress(200, 25);
  EXPECT_EQ(world.views.Status(), "Send Mail : 12 %") << "half to even";
  mail.Progress(0, 10);
  EXPECT_EQ(world.views.Status(), "Send Mail : 12 %");
  mail.Done("me@example.org");
  EXPECT_TRUE(world.Logged("Mail was sent to me@example.org"));
  EXPECT_EQ(world.views.Status(), "Mail Was Sent");
  world.RunFor(3100ms);
  EXPECT_EQ(world.views.Status(), "Monitoring Sim");

  mail.Done("me@example.org");
  world.line->Offer();
  world.RunFor(10ms);
  world.line->CallerId("Anna", "1");
  world.RunFor(4s);
  EXPECT_EQ(world.views.Status(), "Caller ID Information") << "a later text is not replaced";
  mail.Progress(200, 200);
  mail.Error("me@example.org", "the server said no");
  EXPECT_NE(world.views.Status(), "Send Mail : 100 %");
  EXPECT_TRUE(world.Logged("Error Sending To Mail To : me@example.org Becouse:the server said no"));
}

}  // namespace
}  // namespace orven::test
