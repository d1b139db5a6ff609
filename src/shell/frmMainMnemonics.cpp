// SPDX-License-Identifier: GPL-3.0-or-later
#include "shell/frmMainMnemonics.h"

#include <QSet>

namespace orven {
namespace {

constexpr QChar kMark = u'&';

/// The letter after the mark, or a null character.
QChar MnemonicOf(const QString& text) {
  const auto mark = text.indexOf(kMark);
  return mark >= 0 && mark + 1 < text.size() ? text[mark + 1].toUpper() : QChar();
}

qsizetype FreeLetter(const QString& text, const QSet<QChar>& taken) {
  for (const bool initials_only : {true, false}) {
    for (qsizetype i = 0; i < text.size(); ++i) {
      if (!text[i].isLetterOrNumber() || taken.contains(text[i].toUpper())) continue;
      if (!initials_only || i == 0 || text[i - 1].isSpace()) return i;
    }
  }
  return -1;
}

}  // namespace

void AssignMnemonics(const QList<QAction*>& actions) {
  QSet<QChar> taken;
  for (const auto* action : actions) taken.insert(MnemonicOf(action->text()));
  for (auto* action : actions) {
    auto text = action->text();
    if (action->isSeparator() || text.contains(kMark)) continue;
    const auto place = FreeLetter(text, taken);
    if (place < 0) continue;
    taken.insert(text[place].toUpper());
    action->setText(text.insert(place, kMark));
  }
}

}  // namespace orven
