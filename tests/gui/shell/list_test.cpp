// SPDX-License-Identifier: GPL-3.0-or-later
// The call list in the window. What its commands decide is tested with the engine's ListCommands.
#include <gmock/gmock.h>

#include <QClipboard>
#include <QContextMenuEvent>
#include <QHelpEvent>
#include <QMenu>
#include <QScrollBar>
#include <QToolTip>

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
    other.Open(desk.home / "Calls");
  }
  int Rows() { return view.model()->rowCount(); }
  void Key(Qt::Key key) { QTest::keyClick(&view, key); }
  bool Shown(const char* menu) {
    const bool visible = desk.Get<QMenu>(menu).isVisible();
    desk.Get<QMenu>(menu).hide();
    return visible;
  }

  Desk desk;
  QAbstractItemView& view = desk.Get<QAbstractItemView>("ListView1");
  SqliteDatabase other{{"Calls", {kCallFields.begin(), kCallFields.end()}}};  ///< another program's
};

TEST_F(List, ShowsEachCallNewestFirstAndUnreadOnesBold) {
  QStringList headers, first_row;
  for (int column = 0; column < view.model()->columnCount(); ++column) {
    headers << view.model()->headerData(column, Qt::Horizontal).toString();
    first_row << desk.Cell(1, column + 1);
  }
  EXPECT_EQ(headers.join(u'|'), "Type|Length|Date|Time|Number|Name");
  EXPECT_EQ(first_row.join(u'|'), "|2|11/21/2026|09:12:00|555-0112|Anna");
  EXPECT_EQ(desk.Cell(2, 2) + desk.Cell(3, 6), "Cleo");
  const auto is_bold = [&] { return view.model()->index(1, 5).data(Qt::FontRole).value<QFont>().bold(); };
  EXPECT_TRUE(is_bold());
  desk.ClickRow(2);
  EXPECT_FALSE(is_bold());
}

TEST_F(List, ClicksReadPlayAndOpenTheRowsMenu) {
  desk.ClickRow(2);
  EXPECT_TRUE(desk.SelectedRow() == 2 && desk.IsRead(2));
  desk.ClickRow(3);
  EXPECT_FALSE(desk.IsRead(3) || desk.card.Plays());
  desk.DoubleClickRow(3);
  EXPECT_EQ(desk.card.Hear(), 300);
  EXPECT_TRUE(desk.IsRead(3));
  QTest::mouseRelease(view.viewport(), Qt::LeftButton, {}, desk.PointIn(3));
  EXPECT_TRUE(desk.card.Plays()) << "releasing the button is no second click";
  desk.ClickRow(1, Qt::RightButton);
  EXPECT_FALSE(desk.card.Plays());
  EXPECT_TRUE(desk.SelectedRow() == 1 && Shown("mnuRightClick") && !desk.IsRead(1));
  desk.ClickRow(2, Qt::RightButton);
  EXPECT_TRUE(Shown("mnuNoMessageRightClick"));
  QContextMenuEvent key(QContextMenuEvent::Keyboard, QPoint(), QPoint());
  QApplication::sendEvent(view.viewport(), &key);
  EXPECT_TRUE(Shown("mnuNoMessageRightClick"));
}

TEST_F(List, EachCommandActsOnTheSelectedCall) {
  const struct {
    const char* command;
    int selected;
    bool read;  ///< that row, afterwards
  } steps[] = {{"mnuLast", 3, false},
               {"mnuBack", 2, true},
               {"mnuNoMesMarkasunread", 2, false},
               {"mnuNoMesMarkasRead", 2, true},
               {"mnuBack", 1, true},
               {"mnuBack", 1, true},
               {"mnuNext", 2, true},
               {"mnuNext", 3, true},
               {"mnuFirst", 1, true},
               {"mnuMarkasunread", 1, false},
               {"mnuRCMarkAsRead", 1, true}};
  for (const auto& [command, selected, read] : steps) {
    desk.Do(command);
    EXPECT_TRUE(desk.SelectedRow() == selected && desk.IsRead(selected) == read) << command << selected;
  }
  desk.Do("ToolBarPlayer.Play");
  desk.Do("Toolbar1.Next");
  EXPECT_FALSE(desk.card.Plays());
  desk.Do("Toolbar1.Back");
  EXPECT_EQ(desk.SelectedRow(), 1);
}

TEST_F(List, CanBeUsedByTheKeyboardAlone) {
  const auto plays = [&](Qt::Key key) { return Key(key), desk.card.Hear(); };
  EXPECT_EQ(plays(Qt::Key_Space), 100);
  EXPECT_EQ(plays(Qt::Key_Escape), 0);
  Key(Qt::Key_Down);
  EXPECT_EQ(desk.Machine().ListView1.Selected(), 2);
  EXPECT_FALSE(desk.IsRead(2)) << "moving over a call does not read it";
  Key(Qt::Key_End);
  EXPECT_EQ(plays(Qt::Key_Return), 300);
  Key(Qt::Key_Home);
  QTest::keyClick(&view, Qt::Key_C, Qt::ControlModifier);
  EXPECT_TRUE(QApplication::clipboard()->text().endsWith("\tAnna"));
  desk.dialogs.yes = true;
  desk.Get<QToolButton>("Toolbar1.Log").setFocus();
  QTest::keyClick(desk.window.focusWidget(), Qt::Key_Delete);
  EXPECT_EQ(Rows(), 3);
  view.setFocus();
  Key(Qt::Key_Delete);
  EXPECT_EQ(desk.Cell(1, 6), "Ben");
  QStringList reached;
  for (int i = 0; i < 30; ++i) {
    QTest::keyClick(desk.window.focusWidget(), Qt::Key_Tab);
    reached << desk.window.focusWidget()->objectName();
  }
  for (const char* name : {"Toolbar1.OnOff", "ToolBarPlayer.Play", "TBQuickOption.Delete", "ListView1"})
    EXPECT_TRUE(reached.contains(QLatin1String(name))) << name;
  QTest::keyClick(&desk.window, Qt::Key_Q, Qt::ControlModifier);
  EXPECT_EQ(desk.ends, 1);
}

TEST_F(List, DeletesSavesAndClearsAndOffersNothingForAnEmptyList) {
  desk.dialogs.save_as = desk.home / "copy.wav";
  for (const auto& command : {"mnuSave", "mnuRCSave"}) {
    desk.Do(command);
    ASSERT_TRUE(QTest::qWaitFor([&] { return desk.files.Exists(desk.home / "copy.wav"); })) << command;
    desk.files.Delete(desk.home / "copy.wav");
  }
  desk.ClickRow(3);
  for (const char* command : {"mnuRCMessageDelete", "mnuClear"}) desk.Do(command);
  EXPECT_THAT(desk.dialogs.questions,
              testing::ElementsAre("Delete Call 3 Information ?", "Clear Calls List ?"));
  EXPECT_EQ(Rows(), 3);
  desk.dialogs.yes = true;
  desk.Do("Toolbar1.Delete");
  EXPECT_FALSE(desk.files.Exists(desk.MessagePath("Cleo")));
  for (const char* command : {"mnuNoMessageDeleteRC", "mnuDelete"}) desk.Do(command);
  EXPECT_EQ(Rows(), 0);
  for (const char* name : {"mnuSave", "mnuDelete", "mnuPlay", "mnuClear"})
    EXPECT_FALSE(desk.Get<QAction>(name).isEnabled()) << name;
  desk.File({{"Dora", 50}});
  QEvent activation(QEvent::ActivationChange);
  QApplication::sendEvent(&desk.window, &activation);
  desk.Do("Toolbar1.Clear");
  EXPECT_TRUE(Rows() == 0 && desk.files.Exists(desk.MessagePath("Dora")));
}

TEST_F(List, AnotherProgramsDeletionMovesNoClickToAnotherCall) {
  other.MoveTo(2);
  other.Delete();
  desk.DoubleClickRow(2);
  EXPECT_FALSE(desk.card.Plays());
  EXPECT_FALSE(desk.IsRead(2)) << "Cleo's, not Ben's as it was";
  desk.window.grab();
  other.MoveTo(1);
  other.Delete();
  desk.ClickRow(1, Qt::RightButton);
  EXPECT_TRUE(Shown("mnuRightClick")) << "Anna's row has not changed";
  other.DeleteAll();
  for (const char* name :
       {"mnuNext", "mnuMarkasunread", "mnuSave", "mnuLast", "mnuStop", "mnuPlay", "mnuDelete"})
    desk.Do(name);
  desk.Machine().ListView1.makeList();
  EXPECT_TRUE(Rows() == 0 && desk.SelectedRow() == 0);
}

TEST_F(List, ACutTextIsShownInATip) {
  const QString name = "A name that no column has room for, however wide the window is made on a desk";
  desk.File({{name.toStdString()}});
  desk.Machine().ListView1.makeList();
  for (const auto& [row, tip] : {std::pair(1, QString()), std::pair(0, name)}) {
    const auto cell = view.visualRect(view.model()->index(row, 5)).center();
    QHelpEvent event(QEvent::ToolTip, cell, view.viewport()->mapToGlobal(cell));
    QApplication::sendEvent(view.viewport(), &event);
    EXPECT_EQ(QToolTip::text(), tip);
  }
}

TEST(LongList, KeepsTheRowsInSightWhenCallsComeAndGo) {
  Desk desk;
  desk.File(std::vector<FiledCall>(100, {"Caller"}));
  desk.Start();
  auto& list = desk.Get<QAbstractItemView>("ListView1");
  auto& model = desk.Machine().ListView1;
  const auto first_in_sight = [&] { return desk.Cell(list.indexAt({5, 5}).row() + 1, 5); };
  desk.File({{"New"}});
  model.makeList();
  EXPECT_EQ(list.indexAt({5, 5}).row(), 0) << "a list that is at its top stays there";
  model.Select(40);
  list.verticalScrollBar()->setValue(list.verticalScrollBar()->maximum() / 3);
  const auto seen = first_in_sight(), selected = desk.Cell(40, 5);
  const auto stays = [&](int row) {
    EXPECT_EQ(first_in_sight(), seen);
    EXPECT_EQ(desk.SelectedRow(), row);
    EXPECT_EQ(desk.Cell(row, 5), selected);
  };
  desk.File({{"New"}, {"New"}});
  model.makeList();
  stays(42);
  desk.Machine().calls.DeleteItemIndex(2);
  model.makeList();
  stays(41);
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
  const std::pair<const char*, std::function<void()>> actions[] = {
      {"insert", [&] { list.ShowRowsInserted(1); }},
      {"select the last", [&] { list.ShowSelection(kRows), list.EnsureVisible(kRows); }},
      {"change", [&] { list.ShowRowsChanged(); }},
      {"remove", [&] { list.ShowRowRemoved(5); }},
      {"type", [&] { QTest::keyClicks(&list, "zzz"), list.ShowRowsChanged(); }},
      {"scroll", [&] { list.verticalScrollBar()->setValue(list.verticalScrollBar()->maximum() / 2); }}};
  for (const auto& [what, action] : actions) {
    asked = 0;
    action();
    list.grab();
    EXPECT_GT(asked, 0) << what;
    EXPECT_LE(asked, 2 * on_a_page) << what;
  }
}

}  // namespace
}  // namespace orven::test
