// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QList>
#include <QPalette>
#include <QPixmap>
#include <QString>
#include <QWidget>

namespace orven::test {

/// The colours of a dark desktop.
QPalette DarkPalette();

/// A window, shown and laid out.
QPixmap Shown(QWidget& window);

/// Writes several tabs or states of one window, beside each other, as one PNG file.
bool Save(const QList<QPixmap>& pictures, const QString& path);

}  // namespace orven::test
