// SPDX-License-Identifier: GPL-3.0-or-later
#include <gmock/gmock.h>

#include <QClipboard>
#include <QContextMenuEvent>
#include <QHelpEvent>
#include <QMenu>
#include <QScrollBar>
#include <QToolTip>
#include <algorithm>

#include "records/call.h"
#include "support/desk/desk.h"

namespace orven::test {
namespace {

using testing::ElementsAre;

/// Three calls, newest first: a message from Anna, a call from Ben, a message from Cleo.
class List : public testing::Test {
 protected:
  List() {
    desk.File({{"Cleo", 300}, {"Ben"}, {"Anna", 100}});
    desk.Start();
  }
  QAbstractItemView& ListView1() { return desk.Get<QAbstractItemView>("ListView1"); }
  void Key(Qt::Key key) { QTest::keyClick(&ListView1(), key); }
  bool Shown(const char* menu) {
    auto& shown = desk.Get<QMenu>(menu);
    const bool visible = shown.isVisible();
    shown.hide();
    return visible;
  }
  Desk desk;
};

TEST_F(List, ShowsEachCallNewestFirstAndUnreadOnesBold) {
  QStringList headers, first_row;
  for (int column = 0; column < ListView1().model()->columnCount(); ++column) {
    headers << ListView1().model()->headerData(column, Qt::Horizontal).toString();
    first_row << desk.Cell(1, column + 1);
  }
  EXPECT_EQ(headers.join(u'|'), "Type|Length|Date|Time|Number|Name");
  EXPECT_EQ(first_row.join(u'|'), "|2|11/21/2026|09:12:00|555-0112|Anna");
  EXPECT_EQ(desk.Cell(2, 2), "");
  EXPECT_EQ(desk.Cell(3, 6), "Cleo");
  const auto is_bold = [&](int row) {
    return ListView1().model()->index(row - 1, 5).data(Qt::FontRole).value<QFont>().bold();
  };
  EXPECT_TRUE(is_bold(2));
  desk.ClickRow(2);
  EXPECT_FALSE(is_bold(2));
}

TEST_F(List, AClickReadsACallWithoutAMessageAndADoubleClickPlaysAMessage) {
  desk.ClickRow(2);
  EXPECT_EQ(desk.SelectedRow(), 2);
  EXPECT_TRUE(desk.IsRead(2));
  desk.ClickRow(3);
  EXPECT_FALSE(desk.IsRead(3));
  EXPECT_FALSE(desk.card.Plays());
  desk.DoubleClickRow(3);
  EXPECT_EQ(desk.card.Hear(), 300);
  EXPECT_TRUE(desk.IsRead(3));
  QTest::mouseRelease(ListView1().viewport(), Qt::LeftButton, {}, desk.PointIn(3));
  EXPECT_TRUE(desk.card.Plays()) << "letting the button go is no other click";
  desk.ClickRow(1);
  EXPECT_FALSE(desk.card.Plays());
}

TEST_F(List, TheRightButtonSelectsTheRowAndOpensItsMenu) {
  desk.ClickRow(3, Qt::RightButton);
  EXPECT_EQ(desk.SelectedRow(), 3);
  EXPECT_TRUE(Shown("mnuRightClick"));
  desk.ClickRow(2, Qt::RightButton);
  EXPECT_TRUE(Shown("mnuNoMessageRightClick"));
  EXPECT_FALSE(desk.IsRead(2));

  QContextMenuEvent key(QContextMenuEvent::Keyboard, QPoint(), QPoint());
  QApplication::sendEvent(ListView1().viewport(), &key);
  EXPECT_TRUE(Shown("mnuNoMessageRightClick"));
  desk.Choose("mnuNoMesMarkasRead");
  EXPECT_TRUE(desk.IsRead(2));
  desk.Choose("mnuNoMesMarkasunread");
  EXPECT_FALSE(desk.IsRead(2));
  desk.ClickRow(1);
  desk.Choose("mnuRCMarkAsRead");
  EXPECT_TRUE(desk.IsRead(1));
  desk.Choose("mnuMarkasunread");
  EXPECT_FALSE(desk.IsRead(1));
}

TEST_F(List, CanBeUsedByTheKeyboardAlone) {
  EXPECT_EQ(desk.SelectedRow(), 1);
  Key(Qt::Key_Space);
  EXPECT_EQ(desk.card.Hear(), 100);
  Key(Qt::Key_Escape);
  EXPECT_FALSE(desk.card.Plays());
  Key(Qt::Key_Down);
  EXPECT_EQ(desk.Machine().ListView1.Selected(), 2);
  EXPECT_FALSE(desk.IsRead(2)) << "passing by reads nothing";
  Key(Qt::Key_End);
  EXPECT_EQ(desk.SelectedRow(), 3);
  Key(Qt::Key_Return);
  EXPECT_EQ(desk.card.Hear(), 300);
  Key(Qt::Key_Home);
  EXPECT_EQ(desk.SelectedRow(), 1);
  QTest::keyClick(&ListView1(), Qt::Key_C, Qt::ControlModifier);
  EXPECT_TRUE(QApplication::clipboard()->text().endsWith("\tAnna"));
  desk.dialogs.yes = true;
  desk.Get<QToolButton>("Toolbar1.Log").setFocus();
  QTest::keyClick(desk.window.focusWidget(), Qt::Key_Delete);
  EXPECT_EQ(desk.Cell(1, 6), "Anna");
  ListView1().setFocus();
  Key(Qt::Key_Delete);
  EXPECT_EQ(desk.Cell(1, 6), "Ben");
  QStringList reached;
  for (int i = 0; i < 30; ++i) {
    QTest::keyClick(desk.window.focusWidget(), Qt::Key_Tab);
    reached << desk.window.focusWidget()->objectName();
  }
  EXPECT_TRUE(reached.contains("Toolbar1.OnOff"));
  EXPECT_TRUE(reached.contains("ToolBarPlayer.Play"));
  EXPECT_TRUE(reached.contains("TBQuickOption.Delete"));
  EXPECT_TRUE(reached.contains("ListView1")) << "and the list again";
  QTest::keyClick(&desk.window, Qt::Key_Q, Qt::ControlModifier);
  EXPECT_EQ(desk.ends, 1);
}

TEST_F(List, DeleteAndClearAskFirstAndActOnYesOnly) {
  desk.ClickRow(3);
  desk.Press("Toolbar1.Delete");
  desk.Choose("mnuClear");
  EXPECT_EQ(ListView1().model()->rowCount(), 3);
  desk.dialogs.yes = true;
  desk.Choose("mnuRCMessageDelete");
  EXPECT_FALSE(desk.files.Exists(desk.MessagePath("Cleo")));
  desk.Choose("mnuNoMessageDeleteRC");
  desk.Choose("mnuDelete");
  EXPECT_EQ(ListView1().model()->rowCount(), 0);
  for (const char* name : {"mnuSave", "mnuDelete", "mnuPlay"})
    EXPECT_FALSE(desk.Get<QAction>(name).isEnabled()) << name;
  desk.File({{"Dora", 50}});
  QEvent activation(QEvent::ActivationChange);
  QApplication::sendEvent(&desk.window, &activation);
  desk.Press("Toolbar1.Clear");
  EXPECT_EQ(ListView1().model()->rowCount(), 0);
  EXPECT_TRUE(desk.files.Exists(desk.MessagePath("Dora")));
  desk.Choose("mnuDelete");
  desk.Choose("mnuClear");
  EXPECT_THAT(
      desk.dialogs.questions,
      ElementsAre("Delete Call 3 Information ?", "Clear Calls List ?", "Delete Call 3 Information ?",
                  "Delete Call 2 Information ?", "Delete Call 1 Information ?", "Clear Calls List ?"));
}

TEST_F(List, SavesACopyOfAMessageAndOfNothingElse) {
  desk.dialogs.save_as = desk.home / "copy.wav";
  desk.ClickRow(2);
  desk.Choose("mnuSave");
  EXPECT_EQ(desk.dialogs.save_title, "");
  desk.ClickRow(1);
  for (const auto& command : {"mnuSave", "mnuRCSave"}) {
    desk.Choose(command);
    ASSERT_TRUE(QTest::qWaitFor([&] { return desk.files.Exists(desk.home / "copy.wav"); })) << command;
    EXPECT_EQ(ContentOf(desk.home / "copy.wav"), ToneOf(100, 2000));
    desk.files.Delete(desk.home / "copy.wav");
  }
}

TEST_F(List, BackNextFirstAndLastMoveAndStopWhatPlays) {
  desk.Choose("mnuLast");
  EXPECT_EQ(desk.SelectedRow(), 3);
  desk.Press("ToolBarPlayer.Play");
  EXPECT_EQ(desk.card.Hear(), 300);
  desk.Press("Toolbar1.Back");
  EXPECT_FALSE(desk.card.Plays());
  EXPECT_EQ(desk.SelectedRow(), 2);
  EXPECT_TRUE(desk.IsRead(2));
  desk.Choose("mnuBack");
  desk.Choose("mnuBack");
  EXPECT_EQ(desk.SelectedRow(), 1);
  desk.Choose("mnuNext");
  EXPECT_EQ(desk.SelectedRow(), 2);
  desk.Press("Toolbar1.Next");
  EXPECT_EQ(desk.SelectedRow(), 3);
  desk.Choose("mnuFirst");
  EXPECT_EQ(desk.SelectedRow(), 1);
}

TEST_F(List, ADoubleClickAfterAnotherProgramsDeletionPlaysNothing) {
  SqliteDatabase other({"Calls", {kCallFields.begin(), kCallFields.end()}});
  other.Open(desk.home / "Calls");
  other.MoveTo(2);
  other.Delete();
  desk.DoubleClickRow(2);
  EXPECT_FALSE(desk.card.Plays());
  EXPECT_FALSE(desk.IsRead(2)) << "Cleo's, not Ben's as it was";
  desk.window.grab();
  other.MoveTo(1);
  other.Delete();
  desk.ClickRow(1, Qt::RightButton);
  EXPECT_TRUE(Shown("mnuRightClick")) << "for Anna, whose row it is still";
}

TEST_F(List, ACutTextIsShownInATip) {
  const QString name = "A name that no column has room for, however wide the window is made on a desk";
  desk.File({{name.toStdString()}});
  desk.Machine().ListView1.makeList();
  const auto cell = ListView1().visualRect(ListView1().model()->index(0, 5)).center();
  for (const auto& [row, tip] : {std::pair(1, QString()), std::pair(0, name)}) {
    const QPoint below(cell.x(), cell.y() + row * cell.y() * 2);
    QHelpEvent event(QEvent::ToolTip, below, ListView1().viewport()->mapToGlobal(below));
    QApplication::sendEvent(ListView1().viewport(), &event);
    EXPECT_EQ(QToolTip::text(), tip);
  }
}

TEST_F(List, IsEmptyAfterAnotherProgramHasEmptiedItWhileAMessagePlays) {
  desk.ClickRow(1);
  desk.Press("ToolBarPlayer.Play");
  SqliteDatabase other({"Calls", {kCallFields.begin(), kCallFields.end()}});
  other.Open(desk.home / "Calls");
  other.DeleteAll();
  ListView1().viewport()->repaint();
  for (const char* name :
       {"mnuNext", "mnuMarkasunread", "mnuSave", "mnuLast", "mnuStop", "mnuPlay", "mnuDelete"}) {
    desk.Choose(name);
  }
  desk.Machine().ListView1.makeList();
  EXPECT_EQ(ListView1().model()->rowCount(), 0);
  EXPECT_EQ(desk.SelectedRow(), 0);
}

TEST(LongList, KeepsWhatAPersonLooksAtInSightWhenCallsComeAndGo) {
  Desk desk;
  std::vector<FiledCall> calls;
  calls.reserve(100);
  for (int i = 0; i < 100; ++i) calls.push_back({"Caller " + std::to_string(i)});
  desk.File(calls);
  desk.Start();
  auto& list = desk.Get<QAbstractItemView>("ListView1");
  const auto first_in_sight = [&] { return desk.Cell(list.indexAt({5, 5}).row() + 1, 6).toStdString(); };

  desk.File({{"New 1"}});
  desk.Machine().ListView1.makeList();
  EXPECT_EQ(first_in_sight(), "New 1");

  desk.Machine().ListView1.Select(40);
  list.verticalScrollBar()->setValue(list.verticalScrollBar()->maximum() / 3);
  const auto seen = first_in_sight();
  const auto selected = desk.Cell(40, 6);
  desk.File({{"New 2"}, {"New 3"}});
  desk.Machine().ListView1.makeList();
  EXPECT_EQ(first_in_sight(), seen);
  EXPECT_EQ(desk.SelectedRow(), 42);
  EXPECT_EQ(desk.Cell(42, 6), selected);

  desk.Machine().calls.DeleteItemIndex(2);
  desk.Machine().ListView1.makeList();
  EXPECT_EQ(first_in_sight(), seen);
  EXPECT_EQ(desk.Cell(desk.SelectedRow(), 6), selected);
}

TEST(LongList, AsksOnlyForTheRowsThatAreSeen) {
  constexpr int kRows = 100'000;
  CallListWidget list(nullptr);
  int asked = 0;
  list.SetSource([&](std::int32_t index) {
    ++asked;
    if (index % 7 == 0) throw RuntimeError(ErrorNumber::SubscriptOutOfRange);
    return CallRow{kUnreadMessage, "5", "11/21/2026", "12:00", std::to_string(index), "Name", "key"};
  });
  list.ShowColumns(
      {{"Type", 400}, {"Length", 500}, {"Date", 1000}, {"Time", 1000}, {"Number", 1800}, {"Name", 1600}});
  list.resize(600, 400);
  list.ShowRowCount(kRows);
  list.show();
  ASSERT_TRUE(QTest::qWaitForWindowExposed(&list));
  const int on_a_page = list.viewport()->height() / list.rowHeight(0) + 2;
  const auto asks_for_pages = [&](int pages, const char* what, const std::function<void()>& action) {
    asked = 0;
    action();
    list.grab();
    EXPECT_GT(asked, 0) << what;
    EXPECT_LE(asked, pages * on_a_page) << what;
  };
  asks_for_pages(2, "insert", [&] { list.ShowRowsInserted(1); });
  asks_for_pages(2, "select the last", [&] {
    list.ShowSelection(kRows);
    list.EnsureVisible(kRows);
  });
  asks_for_pages(2, "change", [&] { list.ShowRowsChanged(); });
  asks_for_pages(2, "remove", [&] { list.ShowRowRemoved(5); });
  asks_for_pages(2, "type", [&] { QTest::keyClicks(&list, "zzz"), list.ShowRowsChanged(); });
  asks_for_pages(21, "scroll", [&] {
    for (int i = 0; i < 20; ++i) {
      list.verticalScrollBar()->setValue(list.verticalScrollBar()->maximum() / 20 * i);
      list.grab();
    }
  });
}

}  // namespace
}  // namespace orven::test
