// SPDX-License-Identifier: GPL-3.0-or-later

#include "gui/window_test.h"
#include "log/frmLog.h"
#include "shell/frmMain.h"
#include "widgets/translation.h"

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
    world.files.PutAt(folder + "0_Sys.txt", world.time.Now() - 40 * 24h);
  }
  void Put(const char* name, std::string content) { world.files.Put(folder + name, std::move(content)); }
  void Open() {
    const auto properties = [this](LogViewer& viewer, QWidget& parent) {
      LogProperties engine(machine.settings, machine.store, machine.log, viewer.Refresher());
      frmLogProp opened(engine, &parent);
      Show(opened);
      use_properties();
      Show(*window);
    };
    window = std::make_unique<frmLog>(
        LogViewer::Parts{machine.log, world.files, world.background, machine.store, machine.settings,
                         world.dialogs, [this](const std::string& path) { saved.push_back(path); }},
        properties, nullptr);
    Show(*window);
    world.RunFor(1ms);
  }
  void ClickFile(const char* name, std::chrono::milliseconds wait = 1ms) {
    auto& list = Get<QListWidget>("List1");
    const auto place = list.visualItemRect(list.findItems(QLatin1String(name), Qt::MatchExactly)[0]);
    QTest::mouseClick(list.viewport(), Qt::LeftButton, {}, place.center());
    world.RunFor(wait);
  }
  LogLineList& Lines() { return Get<LogLineList>("List2"); }
  QString Line(int row) { return Lines().model()->index(row, 0).data().toString(); }
  /// Returns the number of lines shown and the text of the state label.
  std::string State() { return std::to_string(Lines().model()->rowCount()) + ": " + Shown("lblState"); }
  std::string Files() {
    const auto& list = Get<QListWidget>("List1");
    std::string names;
    for (int row = 0; row < list.count(); ++row) names += list.item(row)->text().toStdString() + " ";
    return names;
  }

  AnsweringMachine& machine = world.Machine();
  const std::string folder = std::string(World::kHome) + "/Log/";
  std::function<void()> use_properties;
  std::vector<std::string> saved;
  std::unique_ptr<frmLog> window;
};

TEST_F(LogWindow, PurgesThenShowsAFileAndItsLongestLineToTheEnd) {
  Open();
  EXPECT_EQ(Files(), "1_Sys.txt 2_Calls.txt ");
  EXPECT_FALSE(Enabled("cmdDelete"));
  ClickFile("1_Sys.txt");
  EXPECT_EQ(State(), "2: 2 lines");
  auto& list = Lines();
  EXPECT_EQ(list.Extent(), std::ceil(QFontMetricsF(window->font()).horizontalAdvance(Line(1))) + 50);
  window->resize(10, 10);
  list.setFixedWidth(120);
  EXPECT_TRUE(QTest::qWaitFor([&] { return list.viewport()->width() < 120; }));
  EXPECT_EQ(list.horizontalScrollBar()->maximum(), list.Extent() - list.viewport()->width());
  Click("cmdSaveAs");
  EXPECT_THAT(saved, ElementsAre(folder + "1_Sys.txt"));
  Put("1_Sys.txt", "one\r\ntwo\r\nthree\r\n");
  ClickFile("1_Sys.txt");
  EXPECT_EQ(State(), "3: 3 lines") << "a click on the shown file reads it again";
  Set({{"cmbWhatToShow", "System"}});
  EXPECT_EQ(State(), "3: 3 lines") << "a file that is still listed stays open";
  Set({{"cmbWhatToShow", "Calls"}});
  EXPECT_EQ(Files(), "2_Calls.txt ");
  EXPECT_TRUE(State().starts_with("0:") && !Enabled("cmdDelete"));
}

TEST_F(LogWindow, ALargeFileOpensPieceByPiece) {
  const std::string line = "10:00:01 : Recording[LineIndex:0]->OK";
  std::string large;
  for (int i = 0; i < 1'250'000; ++i) large += line + "\r\n";
  Put("3_Sys.txt", std::move(large));
  Open();
  auto& list = Lines();
  world.background.takes = 1ms;  // per piece
  ClickFile("3_Sys.txt", 1ms);
  EXPECT_EQ(State(), "1024: Reading… 1,024 lines");
  ClickFile("2_Calls.txt", 2ms);
  EXPECT_EQ(State(), "1: 1 line") << "reading the large file was cancelled";
  ClickFile("3_Sys.txt", 2s);
  EXPECT_EQ(State(), "1250000: 1,250,000 lines");
  list.setFocus();
  const int page = list.verticalScrollBar()->pageStep();
  for (const auto& [key, row] :
       {std::pair(Qt::Key_PageDown, page), std::pair(Qt::Key_Home, 0), std::pair(Qt::Key_End, 1'249'999),
        std::pair(Qt::Key_PageUp, 1'249'999 - page), std::pair(Qt::Key_Down, 1'250'000 - page)}) {
    QTest::keyClick(&list, key);
    EXPECT_EQ(list.currentIndex().row(), row);
  }
  const auto place = [&](int row) { return list.visualRect(list.model()->index(row, 0)).center(); };
  QTest::mouseClick(list.viewport(), Qt::LeftButton, {}, place(1'249'998));
  QTest::keyClick(&list, Qt::Key_Down);
  EXPECT_TRUE(list.viewport()->rect().contains(list.visualRect(list.currentIndex()).center()));
  QTest::keyClick(&list, Qt::Key_Up, Qt::ShiftModifier);
  QTest::keySequence(&list, QKeySequence::Copy);
  EXPECT_EQ(QGuiApplication::clipboard()->text().toStdString(), line + "\n" + line + "\n");
}

TEST_F(LogWindow, BinaryAndMissingFilesAreShownAndDeletedAndTheProgramsEndClosesTheWindow) {
  Put("9_Sys.txt", std::string(100'000, '\0') + std::string(100'000, '\xFF'));
  Open();
  ClickFile("9_Sys.txt");
  EXPECT_EQ(Lines().model()->rowCount(), 200'000 / static_cast<int>(LogReading::kMostBytesInLine) + 1);
  EXPECT_EQ(Line(0).count(QChar::ReplacementCharacter), Line(0).size());
  Click("cmdDelete");
  EXPECT_THAT(world.dialogs.questions, ElementsAre("Delete 9_Sys.txt ?"));
  EXPECT_EQ(Files(), "1_Sys.txt 2_Calls.txt 9_Sys.txt ");
  world.dialogs.yes = true;
  Click("cmdDelete");
  EXPECT_EQ(Files(), "1_Sys.txt 2_Calls.txt ");
  world.files.Delete(folder + "1_Sys.txt");
  ClickFile("1_Sys.txt");
  EXPECT_THAT(State(), testing::MatchesRegex("0: .*not found.*"));
  world.registry.Set("cWornBeforeDelete", "0");
  ClickFile("2_Calls.txt");
  Click("cmdDelete");
  EXPECT_EQ(world.dialogs.questions.size(), 2U);
  EXPECT_EQ(Files() + State(), "0: There are no such logs.");
  frmMain().CloseOtherWindows();
  EXPECT_FALSE(window->isVisible());
}

TEST_F(LogWindow, PropertiesApplyAtOnceAndCancelStoresNothing) {
  world.registry.Set("LogFor", "For Ever");
  world.registry.Set("cLogCalls", "0");
  Open();
  for (const char* button : {"cmdCancel", "cmdOK"}) {
    use_properties = [&] {
      Get<QComboBox>("cmbLogFor").setCurrentIndex(0);
      Do("chkLogSys=false chkLogCalls=true " + std::string(button));
    };
    ExpectStored({{"LogFor", "For Ever"}, {"cLogCalls", "0"}, {"cLogSys", "1"}});
    Click("cmdProp");
  }
  machine.log.WriteSystem("dropped");
  machine.log.WriteCalls("kept");
  EXPECT_EQ(Files(), "0_Sys.txt 1_Sys.txt 2_Calls.txt ");
  world.RunFor(1ms);
  EXPECT_EQ(Files(), "12-31-2003_Calls.txt 1_Sys.txt 2_Calls.txt ") << "lists the files left after the purge";
}

TEST_F(LogWindow, SpeaksTheDesktopsLanguageAndStoresEnglish) {
  EXPECT_EQ(ShowIn({"en-GB", "de"}), "en");
  EXPECT_EQ(ShowIn({"fr", "de-AT", "en"}), "de");
  Open();
  ClickFile("1_Sys.txt");
  EXPECT_EQ(State(), "2: 2 Zeilen");
  use_properties = [&] {
    EXPECT_EQ(Shown("cmbLogFor"), "Letzter Monat");
    Do("cmbLogFor=Unbegrenzt cmdOK");
  };
  Click("cmdProp");
  ExpectStored({{"LogFor", "For Ever"}});
  for (auto* translator : qApp->findChildren<QTranslator*>()) QCoreApplication::removeTranslator(translator);
}

}  // namespace
}  // namespace orven::test
