// SPDX-License-Identifier: GPL-3.0-or-later
#include <QElapsedTimer>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QSlider>
#include <QStyleFactory>
#include <QTabWidget>
#include <cmath>
#include <random>

#include "greetings/frmGreetC.h"
#include "screenshots/pictures.h"
#include "support/desk/desk.h"

namespace orven::test {
namespace {

const char* const kEngine = "\n[HKEY_CLASSES_ROOT\\SAPI.SpVoice]\n@=\"SpVoice Class\"\n";
const char* const kVoices =
    "GVCS:English (Great Britain)\r\nEnglish (America)\r\nEnglish (Scotland)\r\nSwedish\r\nHebrew";
const char* const kText =
    "Hello, this is the answering machine of Anna Lindqvist.\n"
    "I am at the harbour until Monday. Leave a message after the beep, and I will call you back.";

/// Speech into the microphone, louder and softer, with pauses between the words.
void Talk(SilentCard& card, std::chrono::milliseconds length) {
  constexpr std::chrono::milliseconds kBlock{20};
  std::mt19937 random(11);
  std::uniform_real_distribution<double> unit(0, 1);
  QElapsedTimer clock;
  clock.start();
  std::chrono::milliseconds said{0};
  while (said < length) {
    const int blocks = 6 + int(14 * unit(random));
    const double loud = unit(random) < 0.2 ? 0 : 4000 + 16000 * unit(random);
    for (int i = 0; i < blocks; ++i, said += kBlock) {
      const double shape = std::sin(M_PI * (i + 0.5) / blocks) * (0.4 + 0.6 * unit(random));
      card.Capture(TestDevice::Samples(kBlockSamples, static_cast<std::int16_t>(loud * shape)));
      QTest::qWait(int(std::max<qint64>(said.count() - clock.elapsed(), 0)));
    }
  }
  for (int i = 0; i < 5; ++i, QTest::qWait(int(kBlock.count())))
    card.Capture(TestDevice::Samples(kBlockSamples, 12000));
}

QPixmap Recording(Desk& desk, frmGreetC& window) {
  window.findChild<QPushButton*>(QStringLiteral("cmdRec"))->click();
  Talk(desk.card, std::chrono::milliseconds(8100));  // the label blinks: it is visible every other second
  return window.grab();
}

QPixmap Playing(Desk& desk, frmGreetC& window) {
  window.findChild<QPushButton*>(QStringLiteral("cmdStopRec"))->click();
  auto& times = *window.findChild<QLabel*>(QStringLiteral("lblPlay"));
  if (!QTest::qWaitFor([&] { return !times.text().endsWith(u"0:00"); })) return {};
  window.findChild<QLineEdit*>(QStringLiteral("txtGreetingName"))->setText(QStringLiteral("At the harbour"));
  window.findChild<QPushButton*>(QStringLiteral("cmdPlay"))->click();
  desk.WavePlay.Seek(std::chrono::seconds(4));
  if (!QTest::qWaitFor([&] { return times.text().startsWith(u"0:04"); })) return {};
  return window.grab();
}

QPixmap TextToSpeech(Desk& desk, frmGreetC& window) {
  window.findChild<QPushButton*>(QStringLiteral("cmdStopPlay"))->click();
  window.findChild<QTabWidget*>(QStringLiteral("TabStrip1"))->setCurrentIndex(1);
  window.findChild<QPlainTextEdit*>(QStringLiteral("txtTTS"))->setPlainText(QString::fromUtf8(kText));
  window.findChild<QSlider*>(QStringLiteral("RateSldr"))->setValue(-2);
  desk.uDat.Say(kVoices);
  return Shown(window);
}

}  // namespace

bool MakeCreator(const QString& folder, const QByteArray& name) {
  QApplication::setStyle(QStyleFactory::create(QStringLiteral("Fusion")));
  if (name.endsWith("dark")) QApplication::setPalette(DarkPalette());
  Desk desk(kEngine);
  desk.Start();
  frmGreetC window(nullptr);
  GreetingCreator engine(desk.Machine().ForGreetingCreator({}), window);
  window.Attach(engine);
  Shown(window);
  const QList<QPixmap> pictures{Recording(desk, window), Playing(desk, window), TextToSpeech(desk, window)};
  window.close();
  return Save(pictures, folder + u'/' + QString::fromLatin1(name) + QStringLiteral(".png"));
}

}  // namespace orven::test
