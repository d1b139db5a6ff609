// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QIcon>
#include <QPalette>

namespace orven {

/// Chooses the installed icon theme for a light or a dark window. Existing icons follow by themselves.
void UseIconTheme(const QPalette& palette);

/// The theme's icon with this Freedesktop name; null when the theme lacks it.
QIcon ThemeIcon(const char* name);

/// One of the pictures in the program's resources: "orven", "orven-off", "orven-trouble", "call-1" to
/// "call-4".
QIcon OwnPicture(const QString& name);

/// The program's icon.
QIcon ProgramIcon();

}  // namespace orven
