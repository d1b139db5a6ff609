// SPDX-License-Identifier: GPL-3.0-or-later
#include <QApplication>
#include <QListWidget>
#include <QStyleFactory>

#include "log/frmLog.h"
#include "screenshots/pictures.h"
#include "shell/frmAbout.h"
#include "support/desk/desk.h"

namespace orven::test {
namespace {

const char* const kLog =
    "10:24:02 : InCommingCall[LineIndex:0]\r\n"
    "10:24:02 : Ring[LineIndex:0]->1\r\n"
    "10:24:02 : CallerID[LineIndex:0]->Anna Garden-5557777\r\n"
    "10:24:08 : Ring[LineIndex:0]->2\r\n"
    "10:24:12 : Connected[LineIndex:0]\r\n"
    "10:24:31 : Disconnected[LineIndex:0]\r\n"
    "10:24:31 : Idle[LineIndex:0]\r\n"
    "11:02:44 : The registration of sip:620@192.168.1.1 failed (401 Unauthorized); no calls can come in "
    "through it. ORVEN keeps trying.\r\n"
    "11:03:14 : The registration of sip:620@192.168.1.1 works again.\r\n";

QPixmap LogPicture(Desk& desk) {
  auto& machine = desk.Machine();
  frmLog window(
      {machine.log, desk.files, desk.background, machine.store, machine.settings, desk.dialogs,
       [](const std::string&) {}},
      [](LogViewer&, QWidget&) {}, nullptr);
  window.show();
  auto& files = *window.findChild<QListWidget*>(QStringLiteral("List1"));
  if (!QTest::qWaitFor([&] { return files.count() > 2; })) return {};
  files.sortItems(Qt::DescendingOrder);
  files.setCurrentRow(files.row(files.findItems(QStringLiteral("11-21-2026_Sys.txt"), Qt::MatchExactly)[0]));
  auto& state = *window.findChild<QLabel*>(QStringLiteral("lblState"));
  if (!QTest::qWaitFor([&] { return state.text().startsWith(u"9 "); })) return {};
  return Shown(window);
}

QPixmap Properties(Desk& desk) {
  auto& machine = desk.Machine();
  LogProperties engine(machine.settings, machine.store, machine.log, [] {});
  frmLogProp window(engine, nullptr);
  return Shown(window);
}

QPixmap About() {
  frmAbout window("1.0.0.22",
                  {{"Qt", "6.4.2", "LGPL-3.0-only", "windows"},
                   {"libre", "1.1.0", "BSD-3-Clause", "the telephone line (SIP)"},
                   {"SQLite", "3.40.1", "public domain", "the records of calls"}},
                  nullptr);
  return Shown(window);
}

}  // namespace

bool MakeLogs(const QString& folder, const QByteArray& name) {
  QApplication::setStyle(QStyleFactory::create(QStringLiteral("Fusion")));
  if (name.endsWith("dark")) QApplication::setPalette(DarkPalette());
  const auto suffix = QString::fromLatin1(name.mid(4));
  Desk desk("\"LogFor\"=\"3 Last Month\"\n\"cWornBeforeDelete\"=\"1\"\n");
  for (const char* day : {"19", "20", "21"}) {
    PutFile(desk.home / ("Log/11-" + std::string(day) + "-2026_Sys.txt"), kLog);
    PutFile(desk.home / ("Log/11-" + std::string(day) + "-2026_Calls.txt"), "10:24:31 : Ring:4\r\n");
  }
  desk.Start();
  const auto path = [&](const char* picture) {
    return folder + QLatin1Char('/') + QLatin1String(picture) + suffix + QStringLiteral(".png");
  };
  return Save({LogPicture(desk)}, path("log")) && Save({Properties(desk)}, path("log_properties")) &&
         Save({About()}, path("about"));
}

}  // namespace orven::test
