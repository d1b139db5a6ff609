// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <QStringList>
#include <string>

#include "base/words.h"

namespace orven {

/// In the language of the desktop; in English where there is no translation. User-interface thread.
QString Shown(const Words& words);

/// Shows texts from now on, Qt's own ones too, in the first of `languages` (QLocale::uiLanguages) that is
/// English or has a translation; else in English. Returns it: "en", "de". To be called once, before windows
/// are made.
std::string ShowIn(const QStringList& languages);

}  // namespace orven
