// SPDX-License-Identifier: GPL-3.0-or-later
#include <QClipboard>
#include <QScrollBar>
#include <QTest>

#include "gui/window_test.h"
#include "log/frmLog.h"
#include "shell/frmMain.h"
#include "support/world.h"

namespace orven::test {
namespace {

using testing::ElementsAre;
using std::chrono_literals::operator""h;

class LogWindow : public WindowTest {
 protected:
  LogWindow() {
    world.registry.Set("LogFor", "1 Last Month");
    Put("1_Sys.txt", "10:00:00 : short\r\n10:00:01 : a much, much longer line\r\n");
    Put("2_Calls.txt", "10:00:02 : Ring:3 [UNKNOWN:UNKNOWN]\r\n");
  }
  void Put(const char* name, std::string content) { world.files.Put(folder + name, std::move(content)); }
  void PutOld(std::chrono::hours age) { world.files.PutAt(folder + "0_Sys.txt", world.time.Now() - age); }
  void Open() {
    const auto properties = [this](LogViewer& viewer, QWidget& parent) {
      LogProperties engine(machine.settings, machine.store, machine.log, viewer.Refresher());
      frmLogProp opened(engine, &parent);
      use_properties(opened);
    };
    window = std::make_unique<frmLog>(
        LogViewer::Parts{machine.log, world.files, world.background, machine.store, machine.settings,
                         world.dialogs, [this](const std::string& path) { saved.push_back(path); }},
        properties, nullptr);
    Show(*window);
    world.RunFor(1ms);
  }
  QListWidget& List1() { return Get<QListWidget>("List1"); }
  LogLineList& List2() { return Get<LogLineList>("List2"); }
  QString State() { return Get<QLabel>("lblState").text(); }
  void ClickFile(const char* name, std::chrono::milliseconds wait = 1ms) {
    auto* item = List1().findItems(QLatin1String(name), Qt::MatchExactly)[0];
    QTest::mouseClick(List1().viewport(), Qt::LeftButton, {}, List1().visualItemRect(item).center());
    world.RunFor(wait);
  }
  QString Shown(int row) { return List2().model()->index(row, 0).data().toString(); }
  int Rows() { return List2().model()->rowCount(); }
  std::string Files() {
    std::string names;
    for (int row = 0; row < List1().count(); ++row) names += List1().item(row)->text().toStdString() + " ";
    return names;
  }

  World world;
  AnsweringMachine& machine = world.Machine();
  const std::string folder = std::string(World::kHome) + "/Log/";
  std::function<void(frmLogProp&)> use_properties;
  std::vector<std::string> saved;
  std::unique_ptr<frmLog> window;
};

TEST_F(LogWindow, PurgesThenShowsAFileAndItsLongestLineToTheEnd) {
  PutOld(40 * 24h);
  Open();
  EXPECT_EQ(Files(), "1_Sys.txt 2_Calls.txt ");
  auto& filter = Get<QComboBox>("cmbWhatToShow");
  EXPECT_EQ(filter.itemText(0) + filter.itemText(1) + filter.itemText(2), u"AllCallsSystem");
  EXPECT_FALSE(Get("cmdDelete").isEnabled() || Get("cmdSaveAs").isEnabled());
  ClickFile("1_Sys.txt");
  EXPECT_EQ(State(), u"2 lines");
  EXPECT_EQ(Rows(), 2);
  EXPECT_EQ(Shown(1), u"10:00:01 : a much, much longer line");
  auto& list = List2();
  EXPECT_EQ(list.Extent(), std::ceil(QFontMetricsF(window->font()).horizontalAdvance(Shown(1))) + 50);
  window->resize(10, 10);
  list.setFixedWidth(120);
  EXPECT_TRUE(QTest::qWaitFor([&] { return list.viewport()->width() < 120; }));
  EXPECT_EQ(list.horizontalScrollBar()->maximum(), list.Extent() - list.viewport()->width());
  Click("cmdSaveAs");
  EXPECT_THAT(saved, ElementsAre(folder + "1_Sys.txt"));
  Put("1_Sys.txt", "one\r\ntwo\r\nthree\r\n");
  ClickFile("1_Sys.txt");
  EXPECT_EQ(Rows(), 3) << "a click on the shown file reads it again";
  filter.setCurrentIndex(2);
  EXPECT_EQ(List1().currentItem()->text(), u"1_Sys.txt");
  EXPECT_EQ(Rows(), 3) << "a file that is still listed stays";
  filter.setCurrentIndex(1);
  EXPECT_EQ(Files(), "2_Calls.txt ");
  EXPECT_EQ(Rows(), 0);
  EXPECT_FALSE(Get("cmdDelete").isEnabled());
}

TEST_F(LogWindow, ALargeFileOpensPieceByPiece) {
  constexpr int kLines = 1'250'000;
  const std::string line = "10:00:01 : Recording[LineIndex:0]->OK";
  std::string large;
  for (int i = 0; i < kLines; ++i) large += line + "\r\n";
  Put("3_Sys.txt", std::move(large));
  Open();
  auto& list = List2();
  world.background.takes = 1ms;  // a piece
  ClickFile("3_Sys.txt", 1ms);
  EXPECT_EQ(Rows(), static_cast<int>(LogReading::kMostLinesInPiece));
  EXPECT_EQ(State(), QString::fromUtf8("Reading… 1,024 lines"));
  ClickFile("2_Calls.txt", 2ms);
  EXPECT_EQ(State(), u"1 line");
  EXPECT_EQ(Rows(), 1) << "the large file was abandoned";
  ClickFile("3_Sys.txt", 2s);
  EXPECT_EQ(Rows(), kLines);
  EXPECT_EQ(State(), u"1,250,000 lines");
  list.setFocus();
  QTest::keyClick(&list, Qt::Key_End);
  EXPECT_EQ(list.currentIndex().row(), kLines - 1);
  EXPECT_TRUE(list.viewport()->rect().contains(list.visualRect(list.currentIndex()).center()));
  QTest::keyClick(&list, Qt::Key_Up, Qt::ShiftModifier);
  QTest::keySequence(&list, QKeySequence::Copy);
  EXPECT_EQ(QGuiApplication::clipboard()->text().toStdString(), line + "\n" + line + "\n");
}

TEST_F(LogWindow, BinaryAndMissingFilesAreShownAndDeletedAndTheProgramsEndClosesTheWindow) {
  Put("9_Sys.txt", std::string(100'000, '\0') + std::string(100'000, '\xFF'));
  Open();
  ClickFile("9_Sys.txt");
  EXPECT_EQ(Rows(), 200'000 / static_cast<int>(LogReading::kMostBytesInLine) + 1);
  EXPECT_EQ(Shown(0).count(QChar::ReplacementCharacter), Shown(0).size());
  Click("cmdDelete");
  EXPECT_THAT(world.dialogs.questions, ElementsAre("Delete 9_Sys.txt ?"));
  EXPECT_EQ(world.dialogs.question_icon, QuestionIcon::None);
  EXPECT_TRUE(world.files.Exists(folder + "9_Sys.txt"));
  world.dialogs.yes = true;
  Click("cmdDelete");
  EXPECT_EQ(Files(), "1_Sys.txt 2_Calls.txt ");
  EXPECT_EQ(Rows(), 0);
  world.files.Delete(folder + "1_Sys.txt");
  ClickFile("1_Sys.txt");
  EXPECT_TRUE(State().contains(u"not found"));
  EXPECT_EQ(Rows(), 0);
  world.registry.Set("cWornBeforeDelete", "0");
  ClickFile("2_Calls.txt");
  Click("cmdDelete");
  EXPECT_EQ(world.dialogs.questions.size(), 2U);
  EXPECT_EQ(Files(), "");
  EXPECT_EQ(State(), u"There are no such logs.");
  frmMain().CloseOtherWindows();
  EXPECT_FALSE(window->isVisible());
}

TEST_F(LogWindow, PropertiesApplyAtOnceAndCancelStoresNothing) {
  const std::pair<const char*, const char*> settings[] = {
      {"LogFor", "no such choice"}, {"cLogCalls", "0"}, {"cLogSys", "1"}, {"cWornBeforeDelete", "0"}};
  for (const auto& [name, text] : settings) world.registry.Set(name, text);
  PutOld(70 * 24h);
  std::string button = "cmdCancel";
  use_properties = [&](frmLogProp& properties) {
    const auto get = [&](const std::string& name) {
      return properties.findChild<QAbstractButton*>(QString::fromStdString(name));
    };
    EXPECT_EQ(properties.windowTitle(), u"Log Properties");
    EXPECT_EQ(get("chkLogCalls")->text() + get("chkLogSys")->text() + get("chkWornBeforeDelete")->text(),
              u"Log CallsLog SystemWorn before delete");
    EXPECT_TRUE(get("chkLogSys")->isChecked() && !get("chkLogCalls")->isChecked());
    for (const char* box : {"chkLogSys", "chkLogCalls", "chkWornBeforeDelete"}) get(box)->toggle();
    auto& months = *properties.findChild<QComboBox*>(QStringLiteral("cmbLogFor"));
    EXPECT_EQ(months.currentText(), u"For Ever");
    months.setCurrentIndex(1);
    get(button)->click();
    EXPECT_EQ(properties.result(), button == "cmdOK" ? QDialog::Accepted : QDialog::Rejected);
  };
  Open();
  Click("cmdProp");
  for (const auto& [name, text] : settings) EXPECT_EQ(world.registry.Text(name), text) << name;
  button = "cmdOK";
  Click("cmdProp");
  const std::pair<const char*, const char*> stored[] = {
      {"LogFor", "2 Last Month"}, {"cLogCalls", "1"}, {"cLogSys", "0"}, {"cWornBeforeDelete", "1"}};
  for (const auto& [name, text] : stored) EXPECT_EQ(world.registry.Text(name), text) << name;
  machine.log.WriteSystem("dropped");
  machine.log.WriteCalls("kept");
  EXPECT_EQ(Files(), "0_Sys.txt 1_Sys.txt 2_Calls.txt ");
  world.RunFor(1ms);
  EXPECT_EQ(Files(), "12-31-2003_Calls.txt 1_Sys.txt 2_Calls.txt ") << "lists what the purge has left";
}

}  // namespace
}  // namespace orven::test
