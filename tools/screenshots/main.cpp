// SPDX-License-Identifier: GPL-3.0-or-later
//
// orven_screenshots FOLDER: writes screenshots of the windows as
// PNG files, in the language of the desktop (LANGUAGE=de), each from a separate process, because Qt sets the scale
// factor when a program starts.
#include <QApplication>
#include <QDir>
#include <QLabel>
#include <QLocale>
#include <QProcess>
#include <QStyleFactory>
#include <cmath>
#include <cstdio>
#include <random>

#include "records/call.h"
#include "screenshots/pictures.h"
#include "support/desk/desk.h"
#include "widgets/translation.h"

namespace orven::test {
namespace {

struct Scene {
  const char* name;
  bool dark;
  const char* scale;
  QSize size;
  int calls;
  bool playing;
};

constexpr Scene kScenes[] = {
    {"light", false, "1", {900, 560}, 14, true},  {"dark", true, "1", {900, 560}, 14, true},
    {"scaled", false, "2", {900, 560}, 14, true}, {"small", false, "1", {560, 360}, 14, false},
    {"empty", false, "1", {900, 560}, 0, false},  {"many", true, "1.5", {760, 480}, 200, false},
};

/// Audio that resembles speech: words with pauses between, louder and softer.
std::vector<std::int16_t> Speech(int seconds, unsigned seed) {
  std::mt19937 random(seed);
  std::uniform_real_distribution<double> unit(0, 1);
  std::vector<std::int16_t> samples;
  const auto end = static_cast<std::size_t>(seconds) * kSampleRate;
  while (samples.size() < end) {
    const auto word = static_cast<int>((0.15 + 0.4 * unit(random)) * kSampleRate);
    const double loud = 3000 + 17000 * unit(random);
    for (int i = 0; i < word; ++i) {
      const double shape = std::sin(M_PI * i / word) * (0.6 + 0.4 * std::sin(i * 0.004 + seed));
      samples.push_back(static_cast<std::int16_t>(loud * shape * (2 * unit(random) - 1)));
    }
    samples.insert(samples.end(), static_cast<std::size_t>((0.03 + 0.2 * unit(random)) * kSampleRate), 0);
  }
  samples.resize(end);
  return samples;
}

void FileCalls(Desk& desk, int count) {
  constexpr struct {
    const char* name;
    const char* number;
    int seconds;  // of the message, 0 for none
    bool read;
  } kCalls[] = {{"Anna Lindqvist", "+46 8 555 0134", 23, false},
                {"UNKNOWN", "UNKNOWN", 0, false},
                {"Dr. Okafor's practice", "555-0172", 41, false},
                {"Miguel", "+34 91 555 019", 12, true},
                {"UNKNOWN", "555-0118", 0, true},
                {"Mum", "555-0101", 96, true},
                {"Harbour Books", "555-0145", 17, true}};
  SqliteDatabase records(RecordSchema{{"Calls", {kCallFields.begin(), kCallFields.end()}}});
  records.Open(desk.home / "Calls");
  for (int i = count - 1; i >= 0; --i) {
    const auto& call = kCalls[static_cast<std::size_t>(i) % std::size(kCalls)];
    const auto file = std::to_string(i) + ".wav";
    if (call.seconds > 0 && i < static_cast<int>(std::size(kCalls))) {
      PutWave(desk.home / ("Messages/" + file), Speech(call.seconds, static_cast<unsigned>(i) + 1));
    }
    const auto date = "11/" + std::to_string(21 - i * 20 / std::max(count, 1)) + "/2026";
    const auto time =
        std::to_string(17 - i % 8) + ":" + std::to_string(10 + i * 7 % 50) + ":0" + std::to_string(i % 10);
    const auto type = call.seconds > 0 ? std::to_string(call.seconds) + ".42" : "-1";
    records.Add({{kCallName, call.name},
                 {kCallNumber, call.number},
                 {kCallDate, date},
                 {kCallTime, time},
                 {kCallMassageName, file},
                 {kType, type},
                 {kRead, call.read || i >= 7 ? "1" : "0"}});
  }
}

int Make(const Scene& scene, const QString& folder) {
  QApplication::setStyle(QStyleFactory::create(QStringLiteral("Fusion")));
  if (scene.dark) QApplication::setPalette(DarkPalette());
  Desk desk;
  FileCalls(desk, scene.calls);
  desk.Start();
  desk.window.resize(scene.size);
  if (scene.calls == 0) desk.window.ShowSetupOffers({.telephone = true, .greeting = true, .password = true});
  if (scene.calls > 0) desk.ClickRow(3);
  if (scene.playing) {
    desk.Do("ToolBarPlayer.Play");
    auto& picture = desk.Get<QWidget>("Waveform");
    auto& times = desk.Get<QLabel>("lblTimes");
    if (!QTest::qWaitFor([&] { return times.text() == u"0:00 / 0:41"; })) return 1;
    if (!QTest::qWaitFor([&] { return picture.cursor().shape() == Qt::PointingHandCursor; })) return 1;
    QTest::mouseClick(&picture, Qt::LeftButton, {}, {picture.width() * 38 / 100, picture.height() / 2});
    if (!QTest::qWaitFor([&] { return !times.text().startsWith(u"0:00"); })) return 1;
  }
  QTest::qWait(100);  // the list is laid out when the event loop is idle
  const auto path = folder + u'/' + QString::fromLatin1(scene.name) + QStringLiteral(".png");
  if (!desk.window.grab().save(path)) return 1;
  std::puts(qPrintable(path));
  return 0;
}

constexpr struct {
  const char* begins;
  bool (*make)(const QString& folder, const QByteArray& name);
} kDialogs[] = {{"dialogs", MakeDialogs},
                {"creator", MakeCreator},
                {"options", MakeOptions},
                {"logs", MakeLogs},
                {"lines", MakeLines},
                {"setup", MakeSetup}};

/// The picture named by the second argument: a dialog, or the main window by its number.
int MakeOne(int argc, char** argv, const QString& folder) {
  const QByteArray name(argv[2]);
  for (const auto& dialog : kDialogs) {
    if (!name.startsWith(dialog.begins)) continue;
    if (name.endsWith("scaled")) qputenv("QT_SCALE_FACTOR", "2");
    const QApplication application(argc, argv);
    ShowIn(QLocale::system().uiLanguages());
    return dialog.make(folder, name) ? 0 : 1;
  }
  const auto& scene = kScenes[name.toUInt()];
  qputenv("QT_SCALE_FACTOR", scene.scale);
  const QApplication application(argc, argv);
  ShowIn(QLocale::system().uiLanguages());
  return Make(scene, folder);
}

}  // namespace
}  // namespace orven::test

int main(int argc, char** argv) {
  using orven::test::kScenes;
  qputenv("QT_QPA_PLATFORM", "offscreen");
  const QString folder = QString::fromLocal8Bit(argc > 1 ? argv[1] : ".");
  if (argc > 2) return orven::test::MakeOne(argc, argv, folder);
  if (!QDir().mkpath(folder)) return 1;
  QStringList pictures{QStringLiteral("dialogs"), QStringLiteral("lines_modem")};
  for (const char* name : {"creator", "options", "logs", "lines", "setup"}) {
    for (const char* variant : {"", "_dark", "_scaled"})
      pictures << QLatin1String(name) + QLatin1String(variant);
  }
  for (std::size_t i = 0; i < std::size(kScenes); ++i) pictures << QString::number(i);
  for (const auto& picture : pictures) {
    if (QProcess::execute(QString::fromLocal8Bit(argv[0]), {folder, picture}) != 0) return 1;
  }
  return 0;
}
