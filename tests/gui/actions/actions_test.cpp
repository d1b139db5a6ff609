// SPDX-License-Identifier: GPL-3.0-or-later
#include <gmock/gmock.h>

#include <QAbstractButton>
#include <QTest>

#include "actions/frmActions.h"
#include "base/runtime_error.h"
#include "support/world.h"

namespace orven::test {
namespace {

using testing::ElementsAre;

class ActionsWindow : public testing::Test {
 protected:
  ActionsWindow() {
    world.registry.Set("AppTo", "say <NAME>");
    world.registry.Set("ActionsMailAllCalls", "1");
    window = std::make_unique<frmActions>(dialog, 1, nullptr);
    window->show();
    QApplication::setActiveWindow(window.get());
  }
  template <class Control>
  Control& Get(const char* name) {
    auto* control = window->findChild<Control*>(QString::fromLatin1(name));
    if (control == nullptr) throw std::runtime_error(name);
    return *control;
  }
  void Click(const char* button) { Get<QAbstractButton>(button).click(); }
  void Type(const char* field, const char* text) { Get<QLineEdit>(field).setText(QString::fromLatin1(text)); }
  std::string Focused() {
    return window->focusWidget() == nullptr ? "" : window->focusWidget()->objectName().toStdString();
  }

  World world;
  int saved = 0;
  ActionsDialog dialog{
      {world.registry, world.Machine().log, world.dialogs, world.shell, world.time, [this] { ++saved; }}};
  std::unique_ptr<frmActions> window;
};

TEST_F(ActionsWindow, ShowsTheSettingsOnTheTabThatWasAskedFor) {
  auto& tabs = Get<QTabWidget>("TabStrip1");
  EXPECT_EQ(tabs.currentIndex(), 1);
  EXPECT_EQ(tabs.tabText(0) + u'|' + tabs.tabText(1), u"E-Mail|Application");
  EXPECT_EQ(Get<QLineEdit>("txtAppTo").text(), u"say <NAME>");
  EXPECT_EQ(Get<QComboBox>("cmbActMail").currentText(), u"Act with messages only!");
  EXPECT_EQ(Get<QComboBox>("cmbActApp").currentText(), u"Act with all calls");
  for (const char* name :
       {"chkSendToMail", "txtSendToMail", "txtSMTP", "txtFromMail", "txtSMTPUser", "cmbActMail"}) {
    EXPECT_TRUE(tabs.widget(0)->isAncestorOf(&Get<QWidget>(name))) << name;
  }
  for (const char* name : {"chkApp", "txtAppTo", "chkBGAPP", "cmbActApp", "cmdParm", "frmTest"}) {
    EXPECT_TRUE(tabs.widget(1)->isAncestorOf(&Get<QWidget>(name))) << name;
  }
  EXPECT_EQ(Get<QLineEdit>("txtSMTPPass").echoMode(), QLineEdit::Password);
}

TEST_F(ActionsWindow, OkLeadsToTheWrongFieldAndClosesWhenAllIsRight) {
  Get<QCheckBox>("chkSendToMail").setChecked(true);
  Get<QCheckBox>("chkApp").setChecked(true);
  Type("txtAppTo", "");
  Type("txtSendToMail", "anna@example.org");
  Click("cmdOK");
  EXPECT_THAT(world.dialogs.informations, ElementsAre("'SMTP' Is Invalid"));
  EXPECT_EQ(Get<QTabWidget>("TabStrip1").currentIndex(), 0);
  EXPECT_EQ(Focused(), "txtSMTP");
  Type("txtSMTP", "mail");
  Type("txtFromMail", "orven@example.org");
  Type("txtSMTPPass", "gehe1m");
  Click("cmdOK");
  EXPECT_EQ(world.dialogs.informations.back(), "'Application Path' Field Is Empty");
  EXPECT_EQ(Get<QTabWidget>("TabStrip1").currentIndex(), 1);
  EXPECT_EQ(Focused(), "txtAppTo");
  EXPECT_TRUE(window->isVisible());
  EXPECT_EQ(saved, 0);
  Type("txtAppTo", "say");
  Click("cmdOK");
  EXPECT_EQ(saved, 1);
  EXPECT_FALSE(window->isVisible());
  EXPECT_EQ(world.registry.Text("SMTPServer"), "mail");
  EXPECT_EQ(world.registry.Text("SMTPPass"), "gehe1m");
  EXPECT_EQ(world.registry.Text("ActionsMailAllCalls"), "1");
}

TEST_F(ActionsWindow, TestTellsBesideTheButtonAndCancelStoresNothing) {
  Click("frmTest");
  EXPECT_THAT(world.shell.started, ElementsAre(testing::Pair("say Name Test", 1)));
  EXPECT_EQ(Get<QLabel>("lblTestResult").text(), u"Started.");
  world.shell.before_start = [] { throw RuntimeError(ErrorNumber::PermissionDenied, "say"); };
  Click("frmTest");
  EXPECT_EQ(Get<QLabel>("lblTestResult").text(), u"Permission denied: say");
  EXPECT_EQ(Get<QLineEdit>("txtAppTo").text(), u"say <NAME>") << "the template stays as it was";
  Click("cmdParm");
  EXPECT_THAT(world.dialogs.messages,
              ElementsAre(testing::HasSubstr("Message Path=<MESSAGE_PATH>\r\n\r\nFor")));
  Type("txtAppTo", "other");
  Click("cmdCancel");
  EXPECT_FALSE(window->isVisible());
  EXPECT_EQ(world.registry.Text("AppTo"), "say <NAME>");
  EXPECT_EQ(saved, 0);
}

}  // namespace
}  // namespace orven::test
