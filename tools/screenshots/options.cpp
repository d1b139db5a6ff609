// SPDX-License-Identifier: GPL-3.0-or-later
#include <QStyleFactory>

#include "options/frmOptions.h"
#include "screenshots/pictures.h"
#include "support/desk/desk.h"

namespace orven::test {
namespace {

const char* const kSettings = R"("SecSilence"="4"
"cDropSilence"="1"
"ValSilence"="80"
"RecordMessage"="1"
"NumOfRing"="3"
"MaxRec"="2"
"WornDelete"="1"
"WornClear"="1"
"ListMessageOnly"="0"
"PreScreen"="0"
"Sound"="0"
"AllowRemoteAccess"="1"
"CompressMessages"="0"
"pQuickToolbar"="1"
"Pass"="471108"
)";

}  // namespace

bool MakeOptions(const QString& folder, const QByteArray& name) {
  QApplication::setStyle(QStyleFactory::create(QStringLiteral("Fusion")));
  if (name.endsWith("dark")) QApplication::setPalette(DarkPalette());
  Desk desk(kSettings);
  desk.cards.names = {"Default output", "Headset", "Monitor loudspeakers"};
  desk.Start();
  desk.Machine().folders.Moved("/home/anna/.local/share/orven/Messages/");
  auto parts = desk.Machine().ForOptionsDialog();
  std::optional<std::int32_t> level;
  parts.line_level = [&level] { return level; };
  OptionsDialog engine(std::move(parts));
  GreetingPlayer greetings(desk.Machine().ForGreetingPlayer([] { return std::nullopt; }));
  QList<QPixmap> pictures;
  for (int tab = 0; tab < 4; ++tab) {
    frmOptions window({engine, greetings, [] { return std::string(); }}, tab, nullptr);
    level = 320;
    pictures << Shown(window);
  }
  return Save(pictures, folder + u'/' + QString::fromLatin1(name) + QStringLiteral(".png"));
}

}  // namespace orven::test
