// SPDX-License-Identifier: GPL-3.0-or-later
#include <gmock/gmock.h>

#include <QApplication>
#include <QClipboard>
#include <QEventLoop>
#include <QFile>
#include <QScrollBar>
#include <QTest>
#include <QTimer>

#include "adapters/desktop/qt_clock.h"
#include "adapters/desktop/qt_event_loop.h"
#include "adapters/files/background_thread.h"
#include "adapters/files/disk_files.h"
#include "log/frmLog.h"
#include "shell/frmMain.h"
#include "support/memory_registry.h"
#include "support/recording_views.h"
#include "support/scratch_folder.h"

namespace orven::test {
namespace {

using testing::ElementsAre;

void Put(const std::string& path, const QByteArray& content) {
  QFile file(QString::fromStdString(path));
  ASSERT_TRUE(file.open(QIODevice::WriteOnly));
  file.write(content);
}

/// The window over real files, read by a real thread.
class LogWindow : public testing::Test {
 protected:
  LogWindow() {
    shared.application_folder = home / "";
    shared.application_folder.pop_back();
    DiskFiles().MakeFolder(home / "Log");
    Put(home / "Log/1_Sys.txt", "10:00:00 : short\r\n10:00:01 : a much, much longer line\r\n");
    Put(home / "Log/2_Calls.txt", "10:00:02 : Ring:3 [UNKNOWN:UNKNOWN]\r\n");
  }
  void Open() {
    const auto properties = [this](LogViewer& viewer, QWidget& parent) {
      LogProperties engine(settings, store, log, viewer.Refresher());
      open_properties(engine, parent);
    };
    window =
        std::make_unique<frmLog>(LogViewer::Parts{log, files, background, store, settings, dialogs,
                                                  [this](const std::string& path) { saved.push_back(path); }},
                                 properties, nullptr);
    window->show();
    QApplication::setActiveWindow(window.get());
    Until([this] { return List1().count() > 0; });
  }
  static void Until(const std::function<bool()>& done) {
    QEventLoop events;  // QTest's own waiting sleeps between the tasks
    QTimer look;
    look.callOnTimeout([&] {
      if (done()) events.quit();
    });
    look.start(1);
    QTimer::singleShot(60'000, &events, &QEventLoop::quit);
    events.exec();
    if (!done()) throw std::runtime_error("it did not happen");
  }
  template <class Control>
  Control& Get(const char* name) {
    auto* control = window->findChild<Control*>(QString::fromLatin1(name));
    if (control == nullptr) throw std::runtime_error(name);
    return *control;
  }
  QListWidget& List1() { return Get<QListWidget>("List1"); }
  QListView& List2() { return Get<QListView>("List2"); }
  void Click(const char* name) { Get<QPushButton>(name).click(); }
  void ClickFile(int row) {
    const auto place = List1().visualItemRect(List1().item(row)).center();
    QTest::mouseClick(List1().viewport(), Qt::LeftButton, {}, place);
  }
  QString Shown(int row) { return List2().model()->index(row, 0).data().toString(); }
  int Rows() { return List2().model()->rowCount(); }
  bool Read() {
    const auto state = Get<QLabel>("lblState").text();
    return state.endsWith(u"lines") && !state.startsWith(u"Reading");
  }
  std::vector<std::string> Files() {
    std::vector<std::string> names;
    for (int row = 0; row < List1().count(); ++row) names.push_back(List1().item(row)->text().toStdString());
    std::sort(names.begin(), names.end());
    return names;
  }
  int RowOf(const char* name) {
    return List1().row(List1().findItems(QLatin1String(name), Qt::MatchExactly)[0]);
  }

  ScratchFolder home;
  QtEventLoop loop;
  QtClock clock;
  DiskFiles files;
  BackgroundThread background{loop};
  MemoryRegistry registry;
  ScriptedDialogs dialogs;
  Settings settings;
  SharedOptions shared;
  LogFiles log{clock, files, loop, settings, shared};
  SettingsStore store{registry, log, files, settings, shared};
  std::function<void(LogProperties&, QWidget&)> open_properties;
  std::vector<std::string> saved;
  std::unique_ptr<frmLog> window;
};

TEST_F(LogWindow, ShowsAFileAndItsLongestLineToTheEnd) {
  Open();
  EXPECT_THAT(Files(), ElementsAre("1_Sys.txt", "2_Calls.txt"));
  auto& filter = Get<QComboBox>("cmbWhatToShow");
  EXPECT_EQ(filter.itemText(0) + filter.itemText(1) + filter.itemText(2), u"AllCallsSystem");
  EXPECT_FALSE(Get<QPushButton>("cmdDelete").isEnabled());
  ClickFile(RowOf("1_Sys.txt"));
  Until([this] { return Read(); });
  EXPECT_EQ(Rows(), 2);
  EXPECT_EQ(Shown(1), u"10:00:01 : a much, much longer line");
  auto& list = Get<LogLineList>("List2");
  EXPECT_EQ(list.Extent(), std::ceil(QFontMetricsF(window->font()).horizontalAdvance(Shown(1))) + 50);
  window->resize(10, 10);
  list.setFixedWidth(120);
  Until([&] { return list.viewport()->width() < 120; });
  EXPECT_EQ(list.horizontalScrollBar()->maximum(), list.Extent() - list.viewport()->width());
  Click("cmdSaveAs");
  EXPECT_THAT(saved, ElementsAre(home / "Log/1_Sys.txt"));
  filter.setCurrentIndex(1);
  EXPECT_THAT(Files(), ElementsAre("2_Calls.txt"));
  EXPECT_EQ(Rows(), 0);
}

TEST_F(LogWindow, ALargeFileOpensWhileTheWindowWorks) {
  constexpr int kLines = 1'250'000;
  const QByteArray line = "10:00:01 : Recording[LineIndex:0]->a line of eighty bytes, as logs have them.\r\n";
  Put(home / "Log/3_Sys.txt", line.repeated(kLines));
  Open();
  std::size_t most = 0;
  const auto* model = List2().model();
  QObject::connect(model, &QAbstractItemModel::rowsInserted, [&](const QModelIndex&, int first, int last) {
    most = std::max(most, static_cast<std::size_t>(last - first + 1));
  });
  ClickFile(RowOf("3_Sys.txt"));
  Until([this] { return Rows() > 10'000; });
  ASSERT_LT(Rows(), kLines) << "it is still being read";
  ClickFile(RowOf("2_Calls.txt"));
  Until([this] { return Get<QLabel>("lblState").text() == u"1 line"; });
  EXPECT_EQ(Rows(), 1) << "the large file was given up";
  ClickFile(RowOf("3_Sys.txt"));
  Until([this] { return Read(); });
  EXPECT_EQ(Rows(), kLines);
  EXPECT_EQ(Get<QLabel>("lblState").text(), u"1,250,000 lines");
  EXPECT_LE(most, LogReading::kMostLinesInPiece);
  auto& list = List2();
  list.setFocus();
  QTest::keyClick(&list, Qt::Key_End);
  EXPECT_EQ(list.currentIndex().row(), kLines - 1);
  EXPECT_TRUE(list.viewport()->rect().contains(list.visualRect(list.currentIndex()).center()));
  QTest::keyClick(&list, Qt::Key_Up, Qt::ShiftModifier);
  QTest::keySequence(&list, QKeySequence::Copy);
  EXPECT_EQ(QGuiApplication::clipboard()->text(), QString::fromLatin1(line.chopped(2) + '\n').repeated(2));
}

TEST_F(LogWindow, DeletesWhatIsBinaryOrGoneAndTheWindowEndsWithTheProgram) {
  Put(home / "Log/9_Sys.txt", QByteArray(100'000, '\0') + QByteArray(100'000, '\xFF'));
  registry.Set("cWornBeforeDelete", "1");
  Open();
  ClickFile(RowOf("9_Sys.txt"));
  Until([this] { return Read(); });
  EXPECT_EQ(Rows(), 200'000 / static_cast<int>(LogReading::kMostBytesInLine) + 1);
  EXPECT_EQ(Shown(0).count(QChar::ReplacementCharacter), Shown(0).size());
  Click("cmdDelete");
  EXPECT_THAT(dialogs.questions, ElementsAre("Delete 9_Sys.txt ?"));
  EXPECT_EQ(dialogs.question_icon, QuestionIcon::None);
  dialogs.yes = true;
  Click("cmdDelete");
  EXPECT_THAT(Files(), ElementsAre("1_Sys.txt", "2_Calls.txt"));
  EXPECT_EQ(Rows(), 0);
  files.Delete(home / "Log/1_Sys.txt");
  ClickFile(RowOf("1_Sys.txt"));
  Until([this] { return Get<QLabel>("lblState").text().contains(u"not found"); });
  EXPECT_EQ(Rows(), 0);
  registry.Set("cWornBeforeDelete", "0");
  ClickFile(RowOf("2_Calls.txt"));
  Click("cmdDelete");
  EXPECT_EQ(dialogs.questions.size(), 2U);
  ASSERT_EQ(std::remove((home / "Log").c_str()), 0);
  Get<QComboBox>("cmbWhatToShow").setCurrentIndex(2);
  EXPECT_EQ(List1().count(), 0);
  frmMain main;
  main.CloseOtherWindows();
  EXPECT_FALSE(window->isVisible());
}

TEST_F(LogWindow, PropertiesHaveTheirControlsAndCancelStoresNothing) {
  registry.Set("LogFor", "3 Last Month");
  registry.Set("cLogSys", "1");
  registry.Set("cWornBeforeDelete", "1");
  const auto get = [](QWidget& parent, const char* name) {
    return parent.findChild<QAbstractButton*>(QString::fromLatin1(name));
  };
  Open();
  open_properties = [&](LogProperties& engine, QWidget& parent) {
    frmLogProp properties(engine, &parent);
    EXPECT_EQ(properties.windowTitle(), u"Log Properties");
    EXPECT_EQ(get(properties, "chkLogCalls")->text(), u"Log Calls");
    EXPECT_EQ(get(properties, "chkLogSys")->text(), u"Log System");
    EXPECT_EQ(get(properties, "chkWornBeforeDelete")->text(), u"Worn before delete");
    EXPECT_TRUE(get(properties, "chkLogSys")->isChecked());
    auto& months = *properties.findChild<QComboBox*>(QStringLiteral("cmbLogFor"));
    EXPECT_EQ(months.currentText(), u"3 Last Month");
    get(properties, "chkLogSys")->setChecked(false);
    months.setCurrentIndex(3);
    get(properties, saved.empty() ? "cmdCancel" : "cmdOK")->click();
  };
  Click("cmdProp");
  EXPECT_EQ(registry.Text("LogFor"), "3 Last Month");
  EXPECT_NE(settings.cLogSys, 0);
  saved.emplace_back("now with OK");
  Click("cmdProp");
  EXPECT_EQ(registry.Text("LogFor"), "For Ever");
  EXPECT_EQ(registry.Text("cLogSys"), "0");
  EXPECT_EQ(settings.cLogSys, 0);
}

}  // namespace
}  // namespace orven::test
