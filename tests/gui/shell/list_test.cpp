// SPDX-License-Identifier: GPL-3.0-or-later
// The call list and the player in the window. What their commands decide is tested with the engine's
// ListCommands.
#include <gmock/gmock.h>

#include <QClipboard>
#include <QContextMenuEvent>
#include <QHelpEvent>
#include <QScrollBar>
#include <QSlider>
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
  /// The selected row and whether its call is read: "2 read", "3 new".
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
};

TEST_F(List, ShowsEachCallAndClicksReadPlayAndOpenTheRowsMenu) {
  QStringList headers, first_row;
  for (int column = 0; column < view.model()->columnCount(); ++column) {
    headers << view.model()->headerData(column, Qt::Horizontal).toString();
    first_row << desk.Cell(1, column + 1);
  }
  EXPECT_EQ(headers.join(u'|'), "Type|Length|Date|Time|Number|Name");
  EXPECT_EQ(first_row.join(u'|'), "|2|11/21/2026|09:12:00|555-0112|Anna");
  EXPECT_EQ(desk.Cell(2, 2) + desk.Cell(3, 6), "Cleo");
  desk.ClickRow(2);
  EXPECT_EQ(Selected(), "2 read");
  desk.ClickRow(3);
  EXPECT_EQ(Selected(), "3 new");
  DoubleClick(3);
  EXPECT_EQ(desk.card.Hear(), 300);
  EXPECT_EQ(Selected(), "3 read");
  QTest::mouseRelease(view.viewport(), Qt::LeftButton, {}, Cell(3, 2));
  EXPECT_TRUE(desk.card.Plays()) << "releasing the button is no second click";
  desk.ClickRow(1, Qt::RightButton);
  EXPECT_TRUE(Shown("mnuRightClick") && !desk.card.Plays());
  EXPECT_EQ(Selected(), "1 new");
  desk.ClickRow(2, Qt::RightButton);
  EXPECT_TRUE(Shown("mnuNoMessageRightClick"));
  QContextMenuEvent key(QContextMenuEvent::Keyboard, QPoint(), QPoint());
  QApplication::sendEvent(view.viewport(), &key);
  EXPECT_TRUE(Shown("mnuNoMessageRightClick"));
}

TEST_F(List, EachCommandActsOnTheSelectedCall) {
  const std::pair<const char*, const char*> steps[] = {{"mnuLast", "3 new"},
                                                       {"mnuBack", "2 read"},
                                                       {"mnuNoMesMarkasunread", "2 new"},
                                                       {"mnuNoMesMarkasRead", "2 read"},
                                                       {"Toolbar1.Back", "1 read"},
                                                       {"mnuBack", "1 read"},
                                                       {"Toolbar1.Next", "2 read"},
                                                       {"mnuNext", "3 read"},
                                                       {"mnuFirst", "1 read"},
                                                       {"mnuMarkasunread", "1 new"},
                                                       {"mnuRCMarkAsRead", "1 read"}};
  for (const auto& [command, selected] : steps) {
    desk.Do(command);
    EXPECT_EQ(Selected(), selected) << command;
  }
  for (const auto& [play, stop] : {std::pair("mnuPlay", "mnuStop"), std::pair("mnuRCPlay", "mnuTCStop")}) {
    desk.Do(play);
    EXPECT_EQ(desk.card.Hear(), 100) << play;
    EXPECT_TRUE(slider.isEnabled());
    desk.Do(stop);
    EXPECT_FALSE(desk.card.Plays() || slider.isEnabled()) << stop;
  }
}

TEST_F(List, CanBeUsedByTheKeyboardAlone) {
  const auto plays = [&](Qt::Key key) { return Key(key), desk.card.Hear(); };
  EXPECT_EQ(plays(Qt::Key_Space), 100);
  EXPECT_EQ(plays(Qt::Key_Escape), 0);
  Key(Qt::Key_Down);
  EXPECT_EQ(desk.Machine().ListView1.Selected(), 2);
  EXPECT_EQ(Selected(), "2 new") << "moving over a call does not read it";
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
  QTest::keyClick(&desk.window, Qt::Key_Q, Qt::ControlModifier);
  EXPECT_EQ(desk.ends, 1);
}

TEST_F(List, DeletesSavesAndClearsAndOffersNothingForAnEmptyList) {
  const auto copy = desk.home / "copy.wav", cleos = desk.home / "Messages/Cleo.wav";
  desk.dialogs.save_as = copy;
  for (const auto& command : {"mnuSave", "mnuRCSave"}) {
    desk.Do(command);
    ASSERT_TRUE(QTest::qWaitFor([&] { return desk.files.Exists(copy); })) << command;
    desk.files.Delete(copy);
  }
  desk.ClickRow(3);
  for (const char* command : {"mnuRCMessageDelete", "mnuClear"}) desk.Do(command);
  EXPECT_THAT(desk.dialogs.questions,
              testing::ElementsAre("Delete Call 3 Information ?", "Clear Calls List ?"));
  EXPECT_EQ(Rows(), 3);
  desk.dialogs.yes = true;
  desk.Do("Toolbar1.Delete");
  EXPECT_FALSE(desk.files.Exists(cleos));
  for (const char* command : {"mnuNoMessageDeleteRC", "mnuDelete"}) desk.Do(command);
  EXPECT_EQ(Rows(), 0);
  for (const char* name : {"mnuSave", "mnuDelete", "mnuPlay", "mnuClear"})
    EXPECT_FALSE(desk.Get<QAction>(name).isEnabled()) << name;
  desk.File({{"Dora", 50}});
  QEvent activation(QEvent::ActivationChange);
  QApplication::sendEvent(&desk.window, &activation);
  EXPECT_EQ(Rows(), 1) << "another program has added a call";
  desk.Do("Toolbar1.Clear");
  EXPECT_EQ(Rows(), 0);
}

TEST_F(List, ADoubleClickOnARowThatMovedPlaysNothing) {
  SqliteDatabase other({"Calls", {kCallFields.begin(), kCallFields.end()}});
  other.Open(desk.home / "Calls");
  other.MoveTo(2);
  other.Delete();
  DoubleClick(2);
  EXPECT_FALSE(desk.card.Plays());
  EXPECT_EQ(Selected(), "2 new") << "Cleo's, not Ben's as it was";
}

TEST_F(List, ACutTextIsShownInATip) {
  const QString name = "A name that no column has room for, however wide the window is made on a desk";
  desk.File({{name.toStdString()}});
  desk.Machine().ListView1.makeList();
  for (const auto& [row, tip] : {std::pair(2, QString()), std::pair(1, name)}) {
    QHelpEvent event(QEvent::ToolTip, Cell(row, 6), view.viewport()->mapToGlobal(Cell(row, 6)));
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
  QTest::mouseClick(&picture, Qt::LeftButton, {}, picture.rect().center());
  EXPECT_TRUE(TimesBecome("0:01 / 0:02"));
  EXPECT_NEAR(slider.value(), 50, 1);
  EXPECT_NEAR(Position(), 1000, 40);
  QTest::mouseClick(&slider, Qt::LeftButton, {}, {slider.width() / 4, slider.height() / 2});
  EXPECT_NEAR(Position(), 500, 60);
  const QPoint at(slider.width() * 3 / 4, slider.height() / 2);
  QTest::mousePress(&slider, Qt::LeftButton, {}, at);
  desk.window.ShowSlider(3);
  EXPECT_NEAR(slider.value(), 75, 2);
  EXPECT_LT(Position(), 1000);
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

TEST(PlayerPicture, ShowsPeaksAndWhatHasBeenPlayed) {
  WaveformWidget picture(nullptr);
  picture.resize(300, picture.height());
  const auto pixel = [&](int x, int y) { return picture.grab().toImage().pixelColor(x, y); };
  const auto background = picture.palette().color(QPalette::Window);
  const auto height = [&](int x) {
    int coloured = 0;
    for (int y = 0; y < picture.height(); ++y) coloured += pixel(x, y) != background ? 1 : 0;
    return coloured;
  };
  EXPECT_EQ(height(100), 1);
  Waveform waveform{std::vector<float>(100, 0.0F), std::chrono::seconds(10)};
  std::fill(waveform.peaks.begin() + 50, waveform.peaks.end(), 1.0F);
  picture.ShowWaveform(waveform);
  EXPECT_EQ(height(60), 1);
  EXPECT_GE(height(240), picture.height() - 2);
  const auto played = pixel(240, 20), unplayed = pixel(288, 20);
  picture.ShowProgress(std::chrono::seconds(9), std::chrono::seconds(10));
  EXPECT_NE(pixel(240, 20), played);
  EXPECT_EQ(pixel(288, 20), unplayed);
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
    EXPECT_TRUE(list.selectionModel()->isRowSelected(row - 1));
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
  list.ShowColumns({{"Type", 400}, {"Length", 500}, {"Date", 1000}});
  list.resize(600, 400);
  list.ShowRowCount(kRows);
  list.show();
  ASSERT_TRUE(QTest::qWaitForWindowExposed(&list));
  const int on_a_page = list.viewport()->height() / list.rowHeight(0) + 2;
  for (int action = 0; action < 4; ++action) {
    asked = 0;
    if (action == 0) list.ShowRowsInserted(1);
    if (action == 1) list.ShowSelection(kRows), list.EnsureVisible(kRows);
    if (action == 2) list.ShowRowRemoved(kRows);
    if (action == 3) QTest::keyClicks(&list, "zzz"), list.ShowRowsChanged();
    list.grab();
    EXPECT_TRUE(asked > 0 && asked <= 2 * on_a_page) << action << ": " << asked;
  }
}

}  // namespace
}  // namespace orven::test
