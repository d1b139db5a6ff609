// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
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

/// Writes several tabs or states of one window, side by side, to one PNG file.
bool Save(const QList<QPixmap>& pictures, const QString& path);

// Each of these writes its pictures as PNG files in `folder` and returns false when one fails. `name` is the
// pictures' name; one that ends in "dark" selects a dark desktop.

/// The caller view, and all dialogs except the options.
bool MakeDialogs(const QString& folder, const QByteArray& name);
/// The tabs of the options dialog: "options…".
bool MakeOptions(const QString& folder, const QByteArray& name);
/// The greeting creator: "creator…".
bool MakeCreator(const QString& folder, const QByteArray& name);
/// The log viewer, the log properties and the about box: "logs…".
bool MakeLogs(const QString& folder, const QByteArray& name);
/// The pages of the set-up assistant: "setup…", four files.
bool MakeSetup(const QString& folder, const QByteArray& name);
/// The telephone lines and the dialog of one line: "lines…"; "lines_modem" is for a modem.
bool MakeLines(const QString& folder, const QByteArray& name);

}  // namespace orven::test
