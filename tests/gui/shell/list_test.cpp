// SPDX-License-Identifier: GPL-3.0-or-later
// The call list and the player in the window. The engine's tests of ListCommands cover the commands' effects.

#include <QAbstractItemModelTester>

#include "gui/window_test.h"
#include "records/call.h"
#include "support/desk/desk.h"

namespace orven::test {
namespace {

/// Three calls, newest first: a message from Anna, a call from Ben, a message from Cleo.
class List : public testing::Test {
 protected:
  List() {
    desk.File({{"Cleo", 300}, {"Ben"}, {"Anna", 100}});
    desk.Start();
  }
  int Rows() { return view.model()->rowCount(); }
  QPoint Cell(int row, int column) {
    return view.visualRect(view.model()->index(row - 1, column - 1)).center();
  }
  void Key(Qt::Key key) { QTest::keyClick(&view, key); }
  void DoubleClick(int row) {
    desk.ClickRow(row);
    QTest::mouseDClick(view.viewport(), Qt::LeftButton, {}, Cell(row, 2));
  }
  bool Shown(const char* menu) {
    const bool visible = desk.Get<QMenu>(menu).isVisible();
    desk.Get<QMenu>(menu).hide();
    return visible;
  }
  /// Returns the selected row and whether its call has been read: "2 read", "3 new".
  std::string Selected() {
    const auto rows = view.selectionModel()->selectedRows();
    if (rows.isEmpty()) return "none";
    const bool bold = rows.first().data(Qt::FontRole).value<QFont>().bold();
    return std::to_string(rows.first().row() + 1) + (bold ? " new" : " read");
  }
  bool TimesBecome(const char* text) {
    return QTest::qWaitFor([&] { return desk.Get<QLabel>("lblTimes").text() == QLatin1String(text); });
  }
  double Position() { return double(desk.WavePlay.Position().count()); }

  Desk desk;
  QAbstractItemView& view = desk.Get<QAbstractItemView>("ListView1");
  QSlider& slider = desk.Get<QSlider>("Slider1");
  QAbstractItemModelTester model_checks{view.model(), QAbstractItemModelTester::FailureReportingMode::Fatal};
};

TEST_F(List, ShowsEachCallAndClicksReadPlayAndOpenTheRowsMenu) {
  QString first_row;
  for (int column = 1; column <= 6; ++column) first_row += desk.Cell(1, column) + u'|';
  EXPECT_EQ(first_row, "|2|11/21/2026|09:12:00|555-0112|Anna|");
  const auto icon = [&](int row) {
    return view.viewport()->grab(view.visualRect(view.model()->index(row, 0)));
  };
  EXPECT_NE(icon(1).toImage(), icon(2).toImage()) << "with and without a message";
  desk.ClickRow(2);
  EXPECT_EQ(Selected(), "2 read");
  desk.ClickRow(3);
  EXPECT_EQ(Selected(), "3 new");
  DoubleClick(3);
  EXPECT_EQ(desk.card.Hear(), 300);
  EXPECT_EQ(Selected(), "3 read");
  QTest::mouseRelease(view.viewport(), Qt::LeftButton, {}, Cell(3, 2));
  EXPECT_TRUE(desk.card.Plays()) << "releasing the button is not a second click";
  desk.ClickRow(1, Qt::RightButton);
  EXPECT_TRUE(Shown("mnuRightClick") && !desk.card.Plays() && Selected() == "1 new");
  desk.ClickRow(2);
  QContextMenuEvent key(QContextMenuEvent::Keyboard, QPoint(), QPoint());
  QApplication::sendEvent(view.viewport(), &key);
  EXPECT_TRUE(Shown("mnuNoMessageRightClick"));
}

TEST_F(List, EachCommandActsOnTheSelectedCall) {
  std::string selected;
  for (const char* command :
       {"mnuLast", "mnuBack", "mnuNoMesMarkasunread", "mnuNoMesMarkasRead", "Toolbar1.Back", "mnuBack",
        "Toolbar1.Next", "mnuNext", "mnuFirst", "mnuMarkasunread", "mnuRCMarkAsRead", "mnuPlay", "mnuStop",
        "mnuRCPlay", "mnuTCStop"}) {
    desk.Do(command);
    selected += Selected() + (desk.card.Plays() && slider.isEnabled() ? " plays " : " ");
  }
  EXPECT_EQ(selected,
            "3 new 2 read 2 new 2 read 1 read 1 read 2 read 3 read 1 read 1 new 1 read 1 read plays 1 read 1 "
            "read plays 1 read ");
}

TEST_F(List, CanBeUsedByTheKeyboardAlone) {
  const auto plays = [&](Qt::Key key) { return Key(key), desk.card.Hear(); };
  EXPECT_EQ(plays(Qt::Key_Space), 100);
  EXPECT_EQ(plays(Qt::Key_Escape), 0);
  Key(Qt::Key_Down);
  EXPECT_EQ(Selected(), "2 new") << "moving to a call does not mark it as read";
  Key(Qt::Key_End);
  EXPECT_EQ(plays(Qt::Key_Return), 300);
  Key(Qt::Key_Home);
  QTest::keyClick(&view, Qt::Key_C, Qt::ControlModifier);
  EXPECT_TRUE(QApplication::clipboard()->text().endsWith("\tAnna"));
  QStringList tabs;
  for (auto* at = desk.window.focusWidget(); tabs.empty() || at != &view; at = desk.window.focusWidget()) {
    tabs << at->objectName().section(u'.', -1);
    QTest::keyClick(at, Qt::Key_Tab);
  }
  EXPECT_EQ(tabs.join(u' ').toStdString(),
            "ListView1 Play Stop cmbDefGreet Play Stop Add Delete cmbRings chkRecMessage Check1 OnOff Back "
            "Next Save Delete Clear Log Events Actions Options");
  desk.dialogs.yes = true;
  desk.Get<QToolButton>("Toolbar1.Log").setFocus();
  QTest::keyClick(desk.window.focusWidget(), Qt::Key_Delete);
  EXPECT_EQ(Rows(), 3);
  view.setFocus();
  Key(Qt::Key_Delete);
  EXPECT_EQ(desk.Cell(1, 6), "Ben");
  QTest::keyClick(&desk.window, Qt::Key_Q, Qt::ControlModifier);
  EXPECT_EQ(desk.ends, 1);
}

TEST_F(List, DeletesSavesAndClearsAndOffersNothingForAnEmptyList) {
  const auto copy = *(desk.dialogs.chosen = desk.home / "copy.wav");
  for (const auto& command : {"mnuSave", "mnuRCSave"}) {
    desk.Do(command);
    ASSERT_TRUE(QTest::qWaitFor([&] { return desk.files.Exists(copy); })) << command;
    desk.files.Delete(copy);
  }
  desk.ClickRow(3);
  for (const char* command : {"mnuRCMessageDelete", "mnuClear"}) desk.Do(command);
  EXPECT_THAT(desk.dialogs.questions,
              testing::ElementsAre("Delete Call 3 Information ?", "Clear Calls List ?"));
  desk.dialogs.yes = true;
  for (const char* command : {"Toolbar1.Delete", "mnuNoMessageDeleteRC", "mnuDelete"}) desk.Do(command);
  EXPECT_EQ(Rows(), 0);
  EXPECT_FALSE(desk.Get<QAction>("mnuDelete").isEnabled() || desk.Get<QAction>("mnuPlay").isEnabled());
  desk.File({{"Dora", 50}});
  QEvent activation(QEvent::ActivationChange);
  QApplication::sendEvent(&desk.window, &activation);
  EXPECT_EQ(Rows(), 1) << "another program has added a call";
  desk.Do("Toolbar1.Clear");
  EXPECT_EQ(Rows(), 0);
}

TEST_F(List, ADoubleClickOnARowThatMovedPlaysNothing) {
  SqliteDatabase other(RecordSchema{{"Calls", {kCallFields.begin(), kCallFields.end()}}});
  other.Open(desk.home / "Calls");
  other.Remove(other.Identity(2));
  DoubleClick(2);
  EXPECT_FALSE(desk.card.Plays());
  EXPECT_EQ(Selected(), "2 new") << "row 2 is Cleo's now, no longer Ben's";
}

TEST_F(List, TipsShowCutTextsAndTheStateOfACall) {
  const QString name = "A name that no column has room for, however wide the window is made on a desk";
  desk.File({{name.toStdString()}});
  desk.Machine().ListView1.makeList();
  desk.ClickRow(3);
  using Tip = std::tuple<int, int, QString>;
  for (const auto& [row, column, tip] :
       {Tip(2, 6, ""), Tip(1, 6, name), Tip(1, 1, "New call without a message"), Tip(2, 1, "New message"),
        Tip(3, 1, "Call without a message")}) {
    const auto place = Cell(row, column);
    QHelpEvent event(QEvent::ToolTip, place, view.viewport()->mapToGlobal(place));
    QApplication::sendEvent(view.viewport(), &event);
    EXPECT_EQ(QToolTip::text(), tip);
  }
}

TEST_F(List, SliderAndPictureFollowAndSeekAndAHeldSliderStays) {
  desk.ClickRow(1);
  ASSERT_TRUE(TimesBecome("0:00 / 0:02"));
  desk.Do("ToolBarPlayer.Play");
  auto& picture = desk.Get<QWidget>("Waveform");
  ASSERT_TRUE(QTest::qWaitFor([&] { return picture.cursor().shape() == Qt::PointingHandCursor; }));
  const auto unplayed = picture.grab().toImage();
  QTest::mouseClick(&picture, Qt::LeftButton, {}, picture.rect().center());
  EXPECT_TRUE(TimesBecome("0:01 / 0:02") && slider.value() >= 49);
  EXPECT_NE(picture.grab().toImage(), unplayed);
  QTest::mouseClick(&slider, Qt::LeftButton, {}, {slider.width() / 4, slider.height() / 2});
  EXPECT_NEAR(Position(), 500, 60);
  const QPoint at(slider.width() * 3 / 4, slider.height() / 2);
  QTest::mousePress(&slider, Qt::LeftButton, {}, at);
  desk.window.findChild<PlayerPanel*>()->ShowSlider(3);
  EXPECT_NEAR(slider.value(), 75, 2);
  QTest::mouseRelease(&slider, Qt::LeftButton, {}, at);
  EXPECT_NEAR(Position(), 1500, 60);
  QTest::keyClick(&slider, Qt::Key_End);
  EXPECT_GE(Position(), 1900);
  QTest::mousePress(&slider, Qt::LeftButton, {}, at);
  while (desk.card.Hear() != 0) continue;
  EXPECT_TRUE(QTest::qWaitFor([&] { return !slider.isEnabled(); }));
  QTest::mouseRelease(&slider, Qt::LeftButton, {}, at);
  EXPECT_FALSE(desk.card.Plays());
}

TEST(LongList, KeepsTheVisibleRowsWhenCallsAreAddedAndDeleted) {
  Desk desk;
  desk.File(std::vector<FiledCall>(100, {"Caller"}));
  desk.Start();
  auto& list = desk.Get<QAbstractItemView>("ListView1");
  auto& model = desk.Machine().ListView1;
  const auto first_in_sight = [&] { return desk.Cell(list.indexAt({5, 5}).row() + 1, 5); };
  desk.File({{"New"}});
  model.makeList();
  EXPECT_EQ(list.indexAt({5, 5}).row(), 0) << "a list scrolled to the top stays there";
  model.Select(40);
  list.verticalScrollBar()->setValue(list.verticalScrollBar()->maximum() / 3);
  const auto seen = first_in_sight();
  desk.File({{"New"}, {"New"}});
  model.makeList();
  desk.Machine().calls.DeleteItemIndex(2);
  model.makeList();
  EXPECT_EQ(first_in_sight(), seen);
  EXPECT_TRUE(list.selectionModel()->isRowSelected(40));
}

}  // namespace
}  // namespace orven::test
