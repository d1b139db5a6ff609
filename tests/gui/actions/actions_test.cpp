// SPDX-License-Identifier: GPL-3.0-or-later
#include "actions/frmActions.h"
#include "base/runtime_error.h"
#include "gui/window_test.h"

namespace orven::test {
namespace {

using testing::ElementsAre;

class ActionsWindow : public WindowTest {
 protected:
  ActionsWindow() {
    world.registry.Set("AppTo", "say <NAME>");
    world.registry.Set("ActionsAppAllCalls", "1");
    Open();
  }
  void Open(int tab = 1) {
    window = std::make_unique<frmActions>(dialog, tab, nullptr);
    Show(*window);
  }
  void Fill() {
    Do("chkSendToMail=true txtSendToMail=anna@example.org txtSMTP=mail txtFromMail=orven@example.org "
       "chkApp=true txtAppTo=say");
  }

  int saved = 0;
  ActionsDialog dialog{{world.Machine().store, world.Machine().log, world.dialogs, world.shell, world.time,
                        world.Mail1, world.mail_tests, [this] { ++saved; }}};
  std::unique_ptr<frmActions> window;
};

TEST_F(ActionsWindow, OkGoesToTheFirstWrongFieldAndStoresNothing) {
  auto& tabs = Get<QTabWidget>("TabStrip1");
  EXPECT_EQ(tabs.currentIndex(), 1) << "the requested tab";
  EXPECT_EQ(Get<QLineEdit>("txtSMTPPass").echoMode(), QLineEdit::Password);
  const std::tuple<const char*, const char*, int> cases[] = {
      // the first field is the invalid one
      {"txtSendToMail=a@b.c txtSMTP=", "'E-Mail To' Is Invalid", 0},
      {"txtSMTP= txtAppTo=", "'SMTP' Is Invalid", 0},
      {"txtFromMail=home txtAppTo=", "'From(Replay To)' Is Invalid", 0},
      {"txtAppTo= txtSendToMail=? chkSendToMail=false", "'Application Path' Field Is Empty", 1}};
  for (const auto& [typed, text, tab] : cases) {
    Fill();
    Do(typed + std::string(" cmdOK"));
    EXPECT_EQ(world.dialogs.informations.back(), text);
    EXPECT_EQ(tabs.currentIndex(), tab) << text;
    EXPECT_TRUE(std::string(typed).starts_with(Focused() + "=")) << text;
  }
  Do("chkApp=false txtAppTo=" + std::string(2048, 'x') + " cmdOK");
  EXPECT_EQ(world.dialogs.informations.back(), "'Application Path' Is Too Long, 2047 Bytes At Most");
  EXPECT_TRUE(window->isVisible());
  ExpectStored({{"AppTo", "say <NAME>"}});
  Do("chkSendToMail=false txtSendToMail= txtAppTo= cmdOK");
  EXPECT_TRUE(saved == 1 && !window->isVisible()) << "fields of a disabled action are not checked";
  EXPECT_EQ(world.Mail1.tries_now, 1) << "what has waited for the right settings";
}

TEST_F(ActionsWindow, ATestMailIsSentWithWhatIsInTheFieldsAndItsResultIsShown) {
  world.Mail1.state = {.waiting = 2, .reason = "mail refuses connections"};
  Open(0);
  ExpectShown({{"lblMailResult", "2 mails wait: mail refuses connections"}});
  Fill();
  Do("txtSMTPUser=anna txtSMTPPass=s3cret cmdTestMail");
  EXPECT_FALSE(Get<QPushButton>("cmdTestMail").isEnabled());
  const auto& [server, user, password, encrypted] = world.mail_tests.account;
  EXPECT_EQ(server + user + password + world.mail_tests.sender + world.mail_tests.recipient,
            "mailannas3cretorven@example.organna@example.org");
  EXPECT_EQ(encrypted, Get<QCheckBox>("chkSMTPSecure").isChecked());
  std::string reason = "mail refuses";
  for (int i = 0; i < 50; ++i) reason += " your connections";
  world.mail_tests.done({false, Words("%1.").Arg(reason)});
  ExpectShown({{"lblMailResult", reason + "."}});
  const auto& result = Get<QLabel>("lblMailResult");
  EXPECT_TRUE(QTest::qWaitFor([&] { return result.height() >= result.heightForWidth(result.width()); }));
  EXPECT_TRUE(Get<QPushButton>("cmdTestMail").isEnabled());
  ExpectStored({{"AppTo", "say <NAME>"}});
}

TEST_F(ActionsWindow, TestRunsTheProgramWithMadeUpDetailsAndCancelStoresNothing) {
  Set({{"txtAppTo", "say \"<NAME>\" <NUMBER> <MESSAGE_PATH> <DATE> <TIME> <NAME>"}});
  Do("frmTest lblTestResult:Started.");
  const auto details = "Number Test /home/orven/Messages/Test.wav " + world.time.DateText(world.time.Now());
  EXPECT_THAT(world.shell.started,
              ElementsAre(testing::Pair("say \"Name Test\" " + details + " 14:05:07 <NAME>", 1)));
  world.shell.before_start = [] { throw RuntimeError(ErrorNumber::PermissionDenied, "say"); };
  EXPECT_THAT(Do("frmTest"), ElementsAre("Error Send To APP ->70 Permission denied: say"));
  ExpectShown({{"lblTestResult", "Permission denied: say"}});
  Click("cmdParm");
  EXPECT_THAT(world.dialogs.messages, ElementsAre(testing::HasSubstr("Message Path=<MESSAGE_PATH>")));
  Click("cmdCancel");
  EXPECT_FALSE(window->isVisible());
  ExpectStored({{"AppTo", "say <NAME>"}});
}

}  // namespace
}  // namespace orven::test
