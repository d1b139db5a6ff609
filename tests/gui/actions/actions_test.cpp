// SPDX-License-Identifier: GPL-3.0-or-later
#include "actions/frmActions.h"
#include "base/runtime_error.h"
#include "gui/window_test.h"
#include "support/world.h"

namespace orven::test {
namespace {

using testing::ElementsAre;

/// The text fields, what they are stored as, and good texts.
constexpr struct {
  const char *field, *setting, *text;
} kTexts[] = {{"txtSendToMail", "MailTo", "anna@example.org"},
              {"txtSMTP", "SMTPServer", "smtps://mail.example.org"},
              {"txtFromMail", "MailFrom", "orven@example.org"},
              {"txtAppTo", "AppTo", "/usr/bin/say \"<NAME>\""},
              {"txtSMTPUser", "SMTPUser", "anna"},
              {"txtSMTPPass", "SMTPPass", "gehe1m"}};
constexpr std::pair<const char*, const char*> kBoxes[] = {
    {"chkSendToMail", "pMailTo"}, {"chkApp", "pAppTo"}, {"chkBGAPP", "pAppToBG"}};

class ActionsWindow : public WindowTest {
 protected:
  ActionsWindow() {
    world.registry.Set("AppTo", "say <NAME>");
    world.registry.Set("ActionsMailAllCalls", "1");
    Open();
  }
  void Open() {
    window = std::make_unique<frmActions>(dialog, 1, nullptr);
    Show(*window);
  }
  void Type(const char* field, const std::string& text) {
    Get<QLineEdit>(field).setText(QString::fromStdString(text));
  }
  void Fill(bool mail, bool application) {
    Get<QCheckBox>("chkSendToMail").setChecked(mail);
    Get<QCheckBox>("chkApp").setChecked(application);
    for (const auto& [field, setting, text] : kTexts) Type(field, text);
  }
  std::string Result() { return Get<QLabel>("lblTestResult").text().toStdString(); }

  World world;
  int saved = 0;
  ActionsDialog dialog{
      {world.registry, world.Machine().log, world.dialogs, world.shell, world.time, [this] { ++saved; }}};
  std::unique_ptr<frmActions> window;
};

TEST_F(ActionsWindow, OpensOnTheRequestedTabAndHidesThePassword) {
  const auto& tabs = Get<QTabWidget>("TabStrip1");
  EXPECT_EQ(tabs.currentIndex(), 1);
  EXPECT_EQ(tabs.tabText(0) + u'|' + tabs.tabText(1), u"E-Mail|Application");
  EXPECT_EQ(Get<QLineEdit>("txtSMTPPass").echoMode(), QLineEdit::Password);
}

TEST_F(ActionsWindow, OkGoesToTheFirstWrongFieldAndStoresNothing) {
  const struct {
    bool mail, application;
    std::vector<std::pair<const char*, std::string>> typed;  // the first is the wrong one
    const char* text;
    int tab;
  } cases[] = {
      {true, true, {{"txtSendToMail", "a@b.c"}, {"txtSMTP", ""}}, "'E-Mail To' Is Invalid", 0},
      {true, true, {{"txtSMTP", ""}, {"txtAppTo", ""}}, "'SMTP' Is Invalid", 0},
      {true, true, {{"txtFromMail", "at home"}, {"txtAppTo", ""}}, "'From(Replay To)' Is Invalid", 0},
      {false, true, {{"txtAppTo", ""}, {"txtSendToMail", "?"}}, "'Application Path' Field Is Empty", 1},
      {true,
       false,
       {{"txtAppTo", std::string(2048, 'x')}},
       "'Application Path' Is Too Long, 2047 Bytes At Most",
       1},
  };
  for (const auto& [mail, application, typed, text, tab] : cases) {
    Fill(mail, application);
    for (const auto& [field, value] : typed) Type(field, value);
    Click("cmdOK");
    EXPECT_EQ(world.dialogs.informations.back(), text);
    EXPECT_EQ(Get<QTabWidget>("TabStrip1").currentIndex(), tab) << text;
    EXPECT_EQ(Focused(), typed.front().first) << text;
  }
  EXPECT_TRUE(window->isVisible());
  EXPECT_EQ(world.registry.Text("AppTo"), "say <NAME>");
  EXPECT_EQ(saved, 0);
}

TEST_F(ActionsWindow, OkStoresEverythingAndTheNextWindowShowsIt) {
  Fill(true, true);
  Get<QCheckBox>("chkBGAPP").setChecked(true);
  Get<QCheckBox>("chkSMTPSecure").setChecked(false);
  Click("cmdOK");
  EXPECT_FALSE(window->isVisible());
  EXPECT_EQ(saved, 1);
  EXPECT_THAT(world.LoggedBy([&] { Open(); }), testing::IsEmpty());
  for (const auto& [field, setting, text] : kTexts) {
    EXPECT_EQ(world.registry.Text(setting), text);
    EXPECT_EQ(Get<QLineEdit>(field).text().toStdString(), text);
  }
  for (const auto& [box, setting] : kBoxes) {
    EXPECT_EQ(world.registry.Text(setting), "1");
    EXPECT_TRUE(Get<QCheckBox>(box).isChecked()) << box;
  }
  EXPECT_EQ(world.registry.Text("ActionsMailAllCalls") + world.registry.Text("ActionsAppAllCalls"), "10");
  EXPECT_EQ(world.registry.Text("SMTPSecure"), "0");
  EXPECT_FALSE(Get<QCheckBox>("chkSMTPSecure").isChecked());
  EXPECT_EQ(Get<QComboBox>("cmbActMail").currentText(), u"Act with messages only!");
  EXPECT_EQ(Get<QComboBox>("cmbActApp").currentText(), u"Act with all calls");
  Fill(false, false);
  for (const char* field : {"txtSendToMail", "txtSMTP", "txtAppTo"}) Type(field, "");
  Click("cmdOK");
  EXPECT_EQ(saved, 2) << "an action that is off may have any text";
}

TEST_F(ActionsWindow, LogsEachMissingValueAndReadsTheOthers) {
  for (const char* name : {"pMailTo", "ActionsMailAllCalls", "pAppToBG", "ActionsAppAllCalls"}) {
    world.registry.Delete(RegistryRoot::LocalMachine, kSettingsKey, name);
  }
  world.registry.Set("pAppTo", "1");
  const std::string line = "ErrActionGetOptions->13 Type mismatch";
  EXPECT_THAT(world.LoggedBy([&] { Open(); }), ElementsAre(line, line, line, line));
  EXPECT_TRUE(Get<QCheckBox>("chkApp").isChecked());
  EXPECT_EQ(Get<QLineEdit>("txtAppTo").text(), u"say <NAME>");
  EXPECT_EQ(Get<QLineEdit>("txtSMTPUser").text() + Get<QLineEdit>("txtSMTPPass").text(), u"");
  EXPECT_TRUE(Get<QCheckBox>("chkSMTPSecure").isChecked());
}

TEST_F(ActionsWindow, TestRunsTheProgramWithMadeUpDetailsAndCancelStoresNothing) {
  Type("txtAppTo", "say \"<NAME>\" <NUMBER> <MESSAGE_PATH> <DATE> <TIME> <NAME>");
  Click("frmTest");
  const auto details = "Number Test /home/orven/Messages/Test.wav " + world.time.DateText(world.time.Now());
  EXPECT_THAT(world.shell.started,
              ElementsAre(testing::Pair("say \"Name Test\" " + details + " 14:05:07 <NAME>", 1)));
  EXPECT_EQ(Result(), "Started.");
  world.shell.before_start = [] { throw RuntimeError(ErrorNumber::PermissionDenied, "say"); };
  EXPECT_THAT(world.LoggedBy([&] { Click("frmTest"); }),
              ElementsAre("Error Send To APP ->70 Permission denied: say"));
  EXPECT_EQ(Result(), "Permission denied: say");
  Click("cmdParm");
  EXPECT_THAT(world.dialogs.messages,
              ElementsAre(testing::HasSubstr("Message Path=<MESSAGE_PATH>\r\n\r\nFor")));
  Click("cmdCancel");
  EXPECT_FALSE(window->isVisible());
  EXPECT_EQ(world.registry.Text("AppTo"), "say <NAME>");
  EXPECT_EQ(saved, 0);
}

}  // namespace
}  // namespace orven::test
