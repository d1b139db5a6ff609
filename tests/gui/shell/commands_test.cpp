// SPDX-License-Identifier: GPL-3.0-or-later
#include <gmock/gmock.h>

#include <QMenu>
#include <QMenuBar>
#include <QSet>

#include "support/desk/desk.h"

namespace orven::test {
namespace {

using testing::ElementsAre;
using testing::Pair;

/// What a person reads in a menu; "-" is a separator.
std::vector<std::string> Captions(const QMenu& menu) {
  std::vector<std::string> captions;
  for (const auto* action : menu.actions()) {
    captions.push_back(action->isSeparator() ? "-" : action->text().remove(u'&').toStdString());
  }
  return captions;
}

TEST(Commands, ToolbarButtonsHaveTheirCaptionsAndTipsInOrder) {
  Desk desk;
  std::vector<std::string> buttons;
  for (const auto* action : desk.Get<QToolBar>("Toolbar1").actions()) {
    if (action->isSeparator()) continue;
    buttons.push_back((action->text() + u'|' + action->toolTip()).toStdString());
    EXPECT_FALSE(action->icon().isNull()) << buttons.back();
  }
  EXPECT_THAT(buttons,
              ElementsAre("Off|Modem Status", "Back|Back  Message", "Next|Next Message",
                          "Save|Save Message As", "Delete|Delete Message", "   Clear   |Clear Calls List",
                          "Log|Log", "Events|Set Events", "Actions|Set Actions", "Options|Options"));
}

TEST(Commands, MenusHaveTheirItemsInOrderAndAKeyForEach) {
  Desk desk;
  const std::pair<const char*, std::vector<std::string>> menus[] = {
      {"MnuFile", {"Save", "Delete", "Clear", "-", "Log", "-", "Hide", "Exit"}},
      {"mnuEdit", {"First", "Last", "Next", "Back", "-", "Play", "Stop"}},
      {"mnuEvents", {"General", "In Coming Call", "Disconnect Call"}},
      {"mnuActions", {"E-Mail", "Application"}},
      {"mnuOptions", {"General", "Devices", "Answer Mode", "Advance"}},
      {"mnuTools", {"Greeting Creator", "-", "Web Page on Greetings", "Web Page on Sounds"}},
      {"mnuHelp", {"Contents", "ORVEN Web Page", "-", "About"}},
      {"mnuRightClick", {"Play", "Stop", "-", "Save As", "Delete", "-", "Mark as unread", "Mark as read"}},
      {"mnuNoMessageRightClick", {"Delete", "-", "Mark as unread", "Mark as read"}},
      {"mnuSystry", {"Exit", "-", "Off", "On", "-", "Open"}}};
  for (const auto& [name, captions] : menus) {
    auto& menu = desk.Get<QMenu>(name);
    EXPECT_EQ(Captions(menu), captions) << name;
    QSet<QChar> keys;
    for (const auto* action : menu.actions()) {
      if (action->isSeparator()) continue;
      const auto mark = action->text().indexOf(u'&');
      ASSERT_GE(mark, 0) << action->text().toStdString();
      EXPECT_FALSE(keys.contains(action->text()[mark + 1].toUpper())) << action->text().toStdString();
      keys.insert(action->text()[mark + 1].toUpper());
    }
  }
  QStringList bar;
  for (const auto* action : desk.window.menuBar()->actions()) bar << action->text().remove(u'&');
  EXPECT_EQ(bar.join(u' '), "File Edit Events Actions Options Tools Help");
}

TEST(Commands, DialogsOpenOnTheirTabsAndThoseThatAreMissingAreDisabled) {
  Desk desk;
  desk.Start();
  for (const char* name :
       {"mnuEventsGeneral", "mnuInComingCall", "mnuIdelCall", "mnuMail", "mnuAplication", "mnuGeneral",
        "mnuDevices", "mnuAnswerMode", "mnuAdvance", "mnuLog", "mnuGreetingCreator", "mnuAbout"}) {
    desk.Choose(name);
  }
  for (const char* key : {"Log", "Events", "Actions", "Options"}) {
    desk.Press(("Toolbar1." + std::string(key)).c_str());
  }
  desk.Press("TBQuickOption.Add");
  EXPECT_THAT(
      desk.dialog_factory.opened,
      ElementsAre(Pair(Dialog::frmEvents, 0), Pair(Dialog::frmEvents, 1), Pair(Dialog::frmEvents, 2),
                  Pair(Dialog::frmActions, 0), Pair(Dialog::frmActions, 1), Pair(Dialog::frmOptions, 0),
                  Pair(Dialog::frmOptions, 1), Pair(Dialog::frmOptions, 2), Pair(Dialog::frmOptions, 3),
                  Pair(Dialog::frmLog, 0), Pair(Dialog::frmGreetC, 0), Pair(Dialog::frmLog, 0),
                  Pair(Dialog::frmEvents, 0), Pair(Dialog::frmActions, 0), Pair(Dialog::frmOptions, 0),
                  Pair(Dialog::frmGreetC, 0)));
  EXPECT_FALSE(desk.Get<QAction>("mnuAbout").isEnabled());
}

TEST(Commands, HelpAndPagesOpenWithTheDesktopsPrograms) {
  Desk desk;
  desk.Start();
  for (const char* name : {"mnuContents", "mnuGreetingsPage", "mnuSoundsPage", "mnuHomePage"})
    desk.Choose(name);
  const auto help = desk.shared.application_folder + "/Help/";
  EXPECT_THAT(desk.shell.opened, ElementsAre(help + "index.htm", help + "greetings.htm", help + "sounds.htm",
                                             help + "index.htm"));
}

TEST(Commands, TheLineIsSwitchedByButtonAndTrayMenuAndTheyShowWhatItIs) {
  Desk desk;
  desk.Start();
  auto& button = desk.Get<QToolButton>("Toolbar1.OnOff");
  const auto shows = [&](bool on, const char* status, bool trying = false) {
    EXPECT_EQ(button.isChecked(), on);
    EXPECT_EQ(button.text(), on ? "On" : "Off");
    EXPECT_EQ(desk.Get<QAction>("mnuOn").isEnabled(), !on);
    EXPECT_EQ(desk.Get<QAction>("mnuOff").isEnabled(), on || trying);
    EXPECT_EQ(desk.Get<QLabel>("StatusBar1.Panel1").text(), status);
    EXPECT_EQ(desk.Tapi1->IsLineOpen(0), on);
  };
  shows(true, "Monitoring Home");
  button.click();
  shows(false, "Off Mode");
  desk.Choose("mnuOn");
  shows(true, "Monitoring Home");
  desk.Choose("mnuOff");
  desk.line->FailOpen(kTelephonyLineInUse, "the port is taken");
  button.click();
  shows(false, "Off Mode", true);
  desk.Choose("mnuOff");
  shows(false, "Off Mode");
}

}  // namespace
}  // namespace orven::test
