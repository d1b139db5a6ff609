// SPDX-License-Identifier: GPL-3.0-or-later
#include <gmock/gmock.h>

#include <QComboBox>
#include <QMenu>
#include <QScreen>
#include <QTableView>
#include <QWheelEvent>
#include <limits>

#include "support/desk/desk.h"
#include "widgets/window_placement.h"

namespace orven::test {
namespace {

/// A person chooses in a box: opens it, moves, closes it with Enter.
void ChooseIn(QComboBox& box, const QString& text) {
  box.setFocus();
  box.showPopup();
  box.view()->setCurrentIndex(box.model()->index(box.findText(text), 0));
  QTest::keyClick(box.view(), Qt::Key_Return);
}

TEST(QuickOptions, APersonsChoiceIsStoredAndTheProgramsFillingIsNot) {
  Desk desk;
  desk.Start();
  const auto stored = ContentOf(desk.home / "registry.reg");
  auto& greetings = desk.Get<QComboBox>("cmbDefGreet");
  auto& rings = desk.Get<QComboBox>("cmbRings");
  auto& record = desk.Get<QCheckBox>("chkRecMessage");
  EXPECT_EQ(greetings.count(), 3);
  EXPECT_EQ(greetings.currentText(), "Holiday");
  EXPECT_EQ(rings.count(), 20);
  EXPECT_EQ(rings.currentText(), "4");
  EXPECT_TRUE(record.isChecked());
  desk.Machine().greetings.Fill("Default");
  EXPECT_EQ(greetings.currentText(), "Default");
  desk.window.ShowRecordMessage(false);
  desk.window.ShowRecordMessage(true);
  desk.window.ShowRings(99);
  EXPECT_EQ(rings.currentIndex(), -1);
  EXPECT_EQ(ContentOf(desk.home / "registry.reg"), stored);

  QWheelEvent wheel({5, 5}, {5, 5}, {}, {0, -120}, Qt::NoButton, Qt::NoModifier, Qt::NoScrollPhase, false);
  QApplication::sendEvent(&greetings, &wheel);
  EXPECT_EQ(desk.Setting("Greeting"), "Holiday");

  ChooseIn(greetings, "Office");
  ChooseIn(rings, "7");
  QTest::mouseClick(&record, Qt::LeftButton, {}, {8, record.height() / 2});
  EXPECT_EQ(desk.Setting("Greeting"), "Office");
  EXPECT_EQ(desk.shared.greeting_file, "Office.wav");
  EXPECT_EQ(desk.Setting("NumOfRing"), "7");
  EXPECT_EQ(desk.Setting("RecordMessage"), "0");
  EXPECT_FALSE(desk.shared.record_messages);
}

TEST(QuickOptions, GreetingButtonsWorkOnTheTextAsItStands) {
  Desk desk;
  desk.Start();
  auto& greetings = desk.Get<QComboBox>("cmbDefGreet");
  desk.Press("TBQuickOption.Play");
  EXPECT_FALSE(desk.card.Plays()) << "no file has that name";
  EXPECT_TRUE(desk.Get<QLabel>("StatusBar1.Panel1").text().startsWith("No file is called \"Holiday\"."));
  desk.Press("TBQuickOption.Delete");
  EXPECT_TRUE(desk.files.Exists(desk.home / "Greets/Holiday.wav"));
  EXPECT_EQ(greetings.currentText(), "Holiday");
  EXPECT_EQ(greetings.count(), 3);
}

TEST(QuickOptions, TheToolbarIsHiddenBySettingAndGridLinesAreStillThere) {
  Desk desk("\"pQuickToolbar\"=\"0\"\n");
  desk.File({{"Anna", 100}});
  desk.Start();
  EXPECT_FALSE(desk.Get<QToolBar>("TBQuickOption").isVisible());
  auto& check = desk.Get<QCheckBox>("Check1");
  auto& list = desk.Get<QTableView>("ListView1");
  EXPECT_TRUE(check.isVisible() && check.isChecked() && list.showGrid());
  QTest::mouseClick(&check, Qt::LeftButton, {}, {8, check.height() / 2});
  EXPECT_FALSE(list.showGrid());
  EXPECT_EQ(desk.Get<CallListWidget>("ListView1").StyleBits(), 0U);
  EXPECT_EQ(desk.Setting("GridLines"), "0");
}

TEST(Frame, ToolbarsAreFlatAsTheirStyleSays) {
  Desk desk;
  desk.Start();
  EXPECT_TRUE(desk.Get<QToolButton>("Toolbar1.Save").autoRaise());
  EXPECT_FALSE(desk.Get<QToolButton>("ToolBarPlayer.Play").autoRaise());
  EXPECT_FALSE(desk.Get<QToolButton>("TBQuickOption.Delete").autoRaise());
  desk.window.SetToolbarStyle(WindowFrame::Toolbar::TBQuickOption, 0x1800);
  EXPECT_TRUE(desk.Get<QToolButton>("TBQuickOption.Delete").autoRaise());
}

TEST(Frame, IconsFollowADarkOrLightDesktopWhileItRuns) {
  Desk desk;
  desk.Start();
  const auto lightness = [&] {
    const auto image = desk.Get<QToolButton>("Toolbar1.Back").icon().pixmap(22).toImage();
    int brightest = 0;
    for (int i = 0; i < image.width() * image.height(); ++i) {
      const auto colour = image.pixelColor(i % image.width(), i / image.width());
      if (colour.alpha() > 200) brightest = std::max(brightest, colour.lightness());
    }
    return brightest;
  };
  const auto palette = QApplication::palette();
  EXPECT_LT(lightness(), 100);
  QApplication::setPalette(QPalette(Qt::black));
  EXPECT_TRUE(QTest::qWaitFor([&] { return lightness() > 150; }));
  QApplication::setPalette(palette);
  EXPECT_TRUE(QTest::qWaitFor([&] { return lightness() < 100; }));
}

TEST(Frame, GoesWhereItWasAndDoesNotDrift) {
  Desk desk;
  desk.Start();
  EXPECT_EQ(desk.window.pos(), QPoint(30, 40));
  EXPECT_EQ(desk.window.size(), QSize(700, 500));
  for (int i = 0; i < 3; ++i) desk.window.Place(desk.window.Geometry());
  EXPECT_EQ(desk.window.Geometry().left, 450);
  EXPECT_EQ(desk.window.Geometry().top, 600);
  EXPECT_EQ(desk.window.Geometry().width, 10500);
  EXPECT_EQ(desk.window.Geometry().height, 7500);
}

TEST(Frame, WhateverIsStoredLeavesTheWindowOnAScreen) {
  constexpr auto kMost = std::numeric_limits<std::int32_t>::max();
  constexpr auto kLeast = std::numeric_limits<std::int32_t>::min();
  const QSize least(560, 360);
  const QList<QRect> screens{{0, 0, 1920, 1080}, {-1280, 100, 1280, 1024}};
  const auto fit = [&](WindowGeometry stored) { return FitOnScreens(stored, least, screens); };
  EXPECT_EQ(fit({600, 450, 10500, 7500, 0}), QRect(30, 40, 700, 500));
  EXPECT_EQ(fit({3000, -15000, 10500, 7500, 0}), QRect(-1000, 200, 700, 500)) << "the other screen";
  EXPECT_EQ(fit({600, 27000, 10500, 7500, 0}), QRect(1220, 40, 700, 500)) << "half out";
  EXPECT_EQ(fit({3000, -4500, 10500, 7500, 0}), QRect(-300, 200, 700, 500)) << "across both";
  EXPECT_EQ(fit({3000, 22500, 10500, 22500, 0}), QRect(1220, 0, 700, 1080)) << "larger than the screen";
  EXPECT_EQ(fit({600, 100'000, 10500, 7500, 0}), QRect(1220, 40, 700, 500));
  EXPECT_EQ(fit({-10'000, 0, 10500, 7500, 0}), QRect(0, 0, 700, 500));
  for (const auto far : {kMost, kLeast, 1'000'000'000, -1'000'000'000}) {
    for (const auto large : {kMost, kLeast, 1'000'000'000, 0}) {
      const auto place = fit({far, far, large, large, 0});
      EXPECT_TRUE(screens[0].contains(place) || screens[1].contains(place)) << far << " " << large;
      EXPECT_GE(place.width(), least.width());
    }
  }
  Desk desk(
      "\"MeTop\"=\"Not "
      "Found\"\n\"MeLeft\"=\"1000000000\"\n\"MeWidth\"=\"-5\"\n\"MeHeight\"=\"1000000000\"\n");
  desk.Start();
  EXPECT_TRUE(desk.window.screen()->availableGeometry().contains(desk.window.geometry()));
}

TEST(Frame, ClosingHidesAndTheTrayBringsItBack) {
  Desk desk;
  desk.Start();
  desk.window.close();
  EXPECT_FALSE(desk.window.isVisible());
  EXPECT_TRUE(desk.Tapi1->IsLineOpen(0));
  desk.Choose("mnuOpen");
  EXPECT_TRUE(desk.window.isVisible());
  desk.Choose("mnuHide");
  EXPECT_FALSE(desk.window.isVisible());
  desk.engine->TrayMouseMove(514 * 15, 15);
  EXPECT_TRUE(desk.window.isVisible());
  EXPECT_FALSE(desk.window.isMinimized());
  desk.engine->TrayMouseMove(517 * 15, 15);
  EXPECT_TRUE(desk.Get<QMenu>("mnuSystry").isVisible());
  desk.window.TrayMenu().hide();
}

TEST(Frame, IsMinimisedWhereThereIsNoTrayAndAPersonBringsItBack) {
  Desk desk;
  desk.Start();
  desk.shell.notification_area = false;
  desk.window.close();
  EXPECT_TRUE(desk.window.isVisible() && desk.window.isMinimized());
  EXPECT_TRUE(desk.Machine().window_hidden);
  desk.Machine().tray.StartBlinking();
  desk.window.showNormal();
  EXPECT_FALSE(desk.Machine().window_hidden);
  EXPECT_FALSE(desk.Machine().tray.Blinking());

  desk.window.close();
  desk.Machine().tray.StartBlinking();
  desk.Choose("mnuOpen");
  EXPECT_FALSE(desk.window.isMinimized());
  EXPECT_TRUE(desk.Machine().tray.Blinking()) << "the program's own doing is no person's coming back";
}

TEST(Frame, ExitCommandsEndTheProgramOnce) {
  for (const char* name : {"mnuExit", "mnuExitSys"}) {
    Desk desk;
    desk.Start();
    desk.window.resize(800, 480);
    desk.Choose(name);
    desk.Choose(name);
    EXPECT_EQ(desk.ends, 1) << name;
    EXPECT_TRUE(desk.window.close());
    EXPECT_TRUE(desk.Logged("Unload ORVEN"));
    EXPECT_EQ(desk.Setting("MeWidth"), "12000");
    EXPECT_FALSE(desk.Tapi1->IsLineOpen(0));
  }
}

TEST(Frame, TheClockTicksInItsPanelsAndControlsHaveNames) {
  Desk desk;
  desk.Start();
  desk.window.ShowClock("23:59:59", "12/31/2026");
  EXPECT_EQ(desk.Get<QLabel>("StatusBar1.Panel2").text(), "23:59:59");
  EXPECT_EQ(desk.Get<QLabel>("StatusBar1.Panel3").text(), "12/31/2026");
  EXPECT_TRUE(QTest::qWaitFor([&] { return desk.Get<QLabel>("StatusBar1.Panel2").text() != "23:59:59"; }));
  for (const char* name : {"ListView1", "Slider1", "Waveform", "cmbDefGreet", "cmbRings", "TBQuickOption.Add",
                           "ToolBarPlayer.Play", "Toolbar1.Clear", "StatusBar1.Panel1"}) {
    EXPECT_FALSE(desk.Get<QWidget>(name).accessibleName().isEmpty()) << name;
  }
}

}  // namespace
}  // namespace orven::test
