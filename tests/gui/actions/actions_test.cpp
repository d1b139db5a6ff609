// SPDX-License-Identifier: GPL-3.0-or-later
#include "actions/frmActions.h"
#include "base/runtime_error.h"
#include "gui/window_test.h"

namespace orven::test {
namespace {

using testing::ElementsAre;

/// Each control, a value other than the one shown first, and what is stored for it.
constexpr struct {
  const char *control, *value, *setting, *stored;
} kControls[] = {{"txtSendToMail", "anna@example.org", "MailTo", "anna@example.org"},
                 {"txtSMTP", "smtps://mail.example.org", "SMTPServer", "smtps://mail.example.org"},
                 {"txtFromMail", "orven@example.org", "MailFrom", "orven@example.org"},
                 {"txtAppTo", "/usr/bin/say \"<NAME>\"", "AppTo", "/usr/bin/say \"<NAME>\""},
                 {"txtSMTPUser", "anna", "SMTPUser", "anna"},
                 {"txtSMTPPass", "gehe1m", "SMTPPass", "gehe1m"},
                 {"chkSendToMail", "true", "pMailTo", "1"},
                 {"chkApp", "true", "pAppTo", "1"},
                 {"chkBGAPP", "true", "pAppToBG", "1"},
                 {"chkSMTPSecure", "false", "SMTPSecure", "0"},
                 {"cmbActMail", "Act with messages only!", "ActionsMailAllCalls", "1"},
                 {"cmbActApp", "Act with all calls", "ActionsAppAllCalls", "0"}};

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
    for (const auto& row : kControls) Set({{row.control, row.value}});
  }

  int saved = 0;
  ActionsDialog dialog{
      {world.registry, world.Machine().log, world.dialogs, world.shell, world.time, [this] { ++saved; }}};
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
}

TEST_F(ActionsWindow, OkStoresEverythingAndTheNextWindowShowsIt) {
  Fill();
  Click("cmdOK");
  EXPECT_FALSE(window->isVisible());
  EXPECT_EQ(saved, 1);
  EXPECT_THAT(world.LoggedBy([&] { Open(0); }), testing::IsEmpty());
  for (const auto& row : kControls) {
    ExpectStored({{row.setting, row.stored}});
    ExpectShown({{row.control, row.value}});
  }
  Do("chkSendToMail=false chkApp=false txtSendToMail= txtAppTo= cmdOK");
  EXPECT_EQ(saved, 2) << "the fields of a disabled action are not checked";
}

TEST_F(ActionsWindow, LogsEachMissingValueAndReadsTheOthers) {
  for (const char* name : {"pMailTo", "ActionsMailAllCalls", "pAppToBG", "ActionsAppAllCalls"})
    world.registry.Delete(RegistryRoot::LocalMachine, kSettingsKey, name);
  world.registry.Set("pAppTo", "1");
  EXPECT_THAT(world.LoggedBy([&] { Open(); }),
              testing::Contains("ErrActionGetOptions->13 Type mismatch").Times(4));
  ExpectShown(
      {{"chkApp", "true"}, {"txtAppTo", "say <NAME>"}, {"txtSMTPUser", ""}, {"chkSMTPSecure", "true"}});
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
