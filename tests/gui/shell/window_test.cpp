// SPDX-License-Identifier: GPL-3.0-or-later
// The main window without its list and player: toolbars, menus, quick options, status bar, window position.

#include <limits>

#include "gui/window_test.h"
#include "shell/frmAbout.h"
#include "support/desk/desk.h"
#include "widgets/dialog_parts.h"
#include "widgets/window_placement.h"

namespace orven::test {
namespace {

class Window : public testing::Test {
 protected:
  Window() { desk.Start(); }

  Desk desk;
  frmMain& window = desk.window;
};

TEST_F(Window, EachMenuItemHasItsOwnKey) {
  ExpectTidy(window);
  auto menus = window.findChildren<QMenu*>();
  EXPECT_GE(menus.size(), 10);
  for (const auto* menu : menus) {
    const auto actions = menu->actions();
    QSet<QString> keys;
    for (const auto* action : actions) keys << action->text().section(u'&', 1, 1).left(1).toUpper();
    keys.remove(QString());  // from separators
    EXPECT_EQ(keys.size(), std::ranges::count(actions, false, &QAction::isSeparator));
  }
  EXPECT_FALSE(desk.Get<QToolButton>("Toolbar1.Save").accessibleDescription().isEmpty());
}

TEST_F(Window, F1OpensThePageAboutTheDialogInFrontOrItsTab) {
  const std::tuple<const char*, const char*, const char*> pages[] = {
      {"frmMain", "", "index"},
      {"frmOptions", "Frame4", "remote_access"},
      {"frmLineEdit", "", "sip"},
      {"frmLineEdit", "cmbPort", "modem"},
      {"frmActions", "", "actions"}};
  for (const auto& [name, part, page] : pages) {
    QDialog dialog(&window);
    SetUpDialog(dialog, name, "Dialog");
    QWidget field(&dialog);
    field.setObjectName(part);
    dialog.show();
    QMessageBox question(&dialog);
    QTest::keyClick(&question, Qt::Key_F1);
    EXPECT_EQ(desk.shell.opened.back(), desk.folder.Path("\\Help\\" + std::string(page) + ".htm")) << name;
  }
}

TEST_F(Window, EachCommandOpensItsDialogOrPage) {
  using enum Dialog;
  const std::tuple<const char*, Dialog, int> dialogs[] = {{"mnuAdvance", frmOptions, 3},
                                                          {"mnuGreetingCreator", frmGreetC, 0},
                                                          {"mnuLog", frmLog, 0},
                                                          {"mnuSetup", frmSetup, 0},
                                                          {"Toolbar1.Log", frmLog, 0},
                                                          {"Toolbar1.Events", frmEvents, 0},
                                                          {"Toolbar1.Actions", frmActions, 0},
                                                          {"Toolbar1.Options", frmOptions, 0},
                                                          {"TBQuickOption.Add", frmGreetC, 0}};
  for (const auto& [command, dialog, tab] : dialogs) {
    desk.Do(command);
    EXPECT_EQ(desk.dialog_factory.opened.back(), std::pair(dialog, tab)) << command;
  }
  desk.shell.opens = false;
  for (const auto& [item, page] :
       {std::pair("mnuContents", "index"), std::pair("mnuGreetingsPage", "greetings"),
        std::pair("mnuSoundsPage", "sounds"), std::pair("mnuHomePage", "index")}) {
    desk.Do(item);
    EXPECT_EQ(desk.shell.opened.back(), desk.folder.Path("\\Help\\" + std::string(page) + ".htm"));
    EXPECT_EQ(desk.dialogs.informations.back(),
              "No program on this computer opens " + desk.shell.opened.back());
  }
}

TEST_F(Window, AnEmptyListLeadsToWhatIsStillToBeSetUp) {
  desk.window.ShowSetupOffers({.telephone = true, .greeting = true, .password = true});
  int page = 0;
  for (const char* link : {"lnkTelephone", "lnkGreeting", "lnkPassword"}) {
    QTest::keyClick(&desk.Get<QPushButton>(link), Qt::Key_Space);
    EXPECT_EQ(desk.dialog_factory.opened.back(), std::pair(Dialog::frmSetup, page++));
  }
  ExpectTidy(window);
  desk.Machine().quick_options.SetGreeting("Default");
  desk.engine->ActivationChanged();
  EXPECT_FALSE(desk.Get<QPushButton>("lnkTelephone").isVisible())
      << "the line \"Home\" is not the first start's";
  EXPECT_TRUE(desk.Get<QPushButton>("lnkGreeting").isVisible());
  desk.File({{"Anna"}});
  desk.Machine().ListView1.makeList();
  EXPECT_FALSE(desk.Get<QPushButton>("lnkGreeting").isVisible() ||
               desk.Get<QLabel>("lblNoCalls").isVisible());
}

TEST(AboutBox, NamesTheVersionAndTheLibraries) {
  frmAbout box("1.2", {{"libre", "3.4", "BSD", "the line"}}, nullptr);
  box.show();
  ExpectTidy(box);
  EXPECT_EQ(box.findChild<QLabel*>("lblVersion")->text(), "Version 1.2");
  EXPECT_EQ(box.findChild<QAbstractItemView*>()->model()->index(0, 2).data(), "BSD");
}

TEST_F(Window, TheLineIsSwitchedByButtonAndTrayMenuAndTheyShowItsState) {
  const auto& button = desk.Get<QToolButton>("Toolbar1.OnOff");
  const auto state = [&] {
    EXPECT_EQ(button.isChecked(), desk.Tapi1->IsLineOpen(0));
    return button.text() + (desk.Get<QAction>("mnuOn").isEnabled() ? "|On" : "|-") +
           (desk.Get<QAction>("mnuOff").isEnabled() ? "|Off|" : "|-|") +
           desk.Get<QLabel>("StatusBar1.Panel1").text();
  };
  EXPECT_EQ(state(), "On|-|Off|Monitoring Home");
  for (const char* off : {"Toolbar1.OnOff", "mnuOff"}) {
    desk.Do(off);
    EXPECT_EQ(state(), "Off|On|-|Off Mode");
    desk.Do("mnuOn");
    EXPECT_EQ(state(), "On|-|Off|Monitoring Home");
  }
  desk.Do("mnuOff");
  desk.line->failure = {kTelephonyLineInUse, "the port is taken"};
  desk.Do("Toolbar1.OnOff");
  EXPECT_TRUE(state().startsWith("Off|On|Off|The line cannot be opened (")) << "tried again until turned off";
}

TEST_F(Window, AQuickOptionIsStoredOnlyWhenAPersonChangesIt) {
  const auto stored = ContentOf(desk.home / "registry.reg");
  auto& greetings = desk.Get<QComboBox>("cmbDefGreet");
  auto& rings = desk.Get<QComboBox>("cmbRings");
  auto& record = desk.Get<QCheckBox>("chkRecMessage");
  EXPECT_TRUE(greetings.count() == 3 && rings.count() == 20 && record.isChecked());
  EXPECT_EQ(greetings.currentText() + rings.currentText(), "Holiday4");
  desk.Machine().greetings.Fill("Default");
  EXPECT_EQ(greetings.currentText(), "Default");
  for (const bool on : {false, true}) desk.Get<QuickOptionBar>("TBQuickOption").ShowRecordMessage(on);
  EXPECT_EQ(ContentOf(desk.home / "registry.reg"), stored);
  for (const auto& [box, text] : {std::pair(&greetings, "Office"), std::pair(&rings, "7")}) {
    box->setFocus();
    box->showPopup();
    box->view()->setCurrentIndex(box->model()->index(box->findText(text), 0));
    QTest::keyClick(box->view(), Qt::Key_Return);
  }
  record.click();
  auto& grid = desk.Get<QCheckBox>("Check1");
  const auto& list = desk.Get<CallListWidget>("ListView1");
  EXPECT_TRUE(grid.isVisible() && grid.isChecked() && list.showGrid());
  grid.click();
  EXPECT_TRUE(!list.showGrid() && list.StyleBits() == 0);
  EXPECT_EQ(desk.Setting("Greeting") + desk.Setting("NumOfRing") + desk.Setting("RecordMessage"), "Office70");
}

TEST_F(Window, IconsFollowADarkOrLightDesktopAndTheClockIsShown) {
  const auto palette = QApplication::palette();
  QIcon::setThemeName("");
  EXPECT_EQ((frmMain(), QIcon::themeName()), "breeze");
  for (const auto& [colours, theme] :
       {std::pair(QPalette(Qt::black), "breeze-dark"), std::pair(palette, "breeze")}) {
    QApplication::setPalette(colours);
    EXPECT_TRUE(QTest::qWaitFor([&] { return QIcon::themeName() == QLatin1String(theme); })) << theme;
  }
  window.ShowClock("23:59:59", "12/31/2026");
  const auto panel = [&](const char* name) { return desk.Get<QLabel>(name).text(); };
  EXPECT_EQ(panel("StatusBar1.Panel2") + panel("StatusBar1.Panel3"), "23:59:5912/31/2026");
  auto& mail = desk.Get<QToolButton>("cmdMail");
  EXPECT_FALSE(mail.isVisible());
  const auto text = "2 mails wait: smtp.example.org & " + std::string(300, 'x');
  window.ShowMail(text);
  EXPECT_TRUE(mail.isVisible() && mail.width() < 300 && mail.text().startsWith("2 mails wait: smtp"));
  EXPECT_EQ(mail.accessibleName().toStdString(), text);
  mail.click();
  EXPECT_EQ(desk.dialog_factory.opened.back(), std::pair(Dialog::frmActions, 0));
  window.ShowMail("");
  EXPECT_FALSE(mail.isVisible());
}

TEST_F(Window, IsPlacedWhereItWasAndAlwaysOnAScreen) {
  EXPECT_EQ(QRect(window.pos(), window.size()), QRect(30, 40, 700, 500));
  for (const WindowGeometry state : {WindowGeometry{0, 0, 10500, 7500, 1}, {0, 0, 10500, 7500, 2}})
    EXPECT_EQ((window.Place(state), window.Geometry().state), state.state) << "minimised, maximised";
  constexpr auto kMost = std::numeric_limits<std::int32_t>::max(), kLeast = ~kMost;
  const QSize least(560, 360);
  const QList<QRect> screens{{0, 0, 1920, 1080}, {-1280, 100, 1280, 1024}};
  const std::pair<WindowGeometry, QRect> cases[] = {
      {{3000, -15000, 10500, 7500, 0}, {-1000, 200, 700, 500}},  // on the other screen
      {{600, 27000, 10500, 7500, 0}, {1220, 40, 700, 500}},      // partly outside
      {{3000, -4500, 10500, 7500, 0}, {-300, 200, 700, 500}},    // across both
      {{3000, 22500, 10500, 22500, 0}, {1220, 0, 700, 1080}},    // larger than the screen
      {{kMost, kLeast, kMost, kLeast, 0}, {-1280, 764, 1280, 360}},
      {{kLeast, kMost, kLeast, kMost, 0}, {1360, 0, 560, 1080}}};
  for (const auto& [stored, place] : cases) EXPECT_EQ(FitOnScreens(stored, least, screens), place);
}

TEST_F(Window, ClosingHidesOrMinimisesItAndAPersonRestoresIt) {
  auto& tray = desk.Machine().tray;
  desk.Do("mnuHide");
  EXPECT_FALSE(window.isVisible());
  window.ShowClock("hidden", "");
  desk.Do("mnuOpen");
  EXPECT_TRUE(window.isVisible() && !window.isMinimized());
  const auto& clock = desk.Get<QLabel>("StatusBar1.Panel2");
  EXPECT_NE(clock.text(), "hidden") << "right at once";
  desk.engine->TrayMouseMove(517 * 15, 15);
  EXPECT_TRUE(window.TrayMenu().isVisible());
  window.TrayMenu().hide();

  desk.shell.notification_area = false;
  window.close();
  EXPECT_TRUE(window.isVisible() && window.isMinimized() && desk.Machine().window_hidden);
  tray.StartBlinking();
  window.ShowClock("minimised", "");
  window.showNormal();
  EXPECT_NE(clock.text(), "minimised");
  EXPECT_FALSE(desk.Machine().window_hidden || tray.Blinking());
  window.resize(800, 480);
  desk.Do("mnuExitSys");
  EXPECT_TRUE(desk.ends == 1 && window.close());
  EXPECT_EQ(desk.Setting("MeWidth"), "12000");
}

}  // namespace
}  // namespace orven::test
