// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QIcon>
#include <QPalette>

namespace orven {

/// Chooses the installed icon theme for a light or a dark window. Existing icons follow by themselves.
void UseIconTheme(const QPalette& palette);

/// An icon of the theme, with its Freedesktop name; null when the theme has none.
QIcon ThemeIcon(const char* name);

/// One of the program's own pictures, which are linked in: "orven", "call-1" to "call-4".
QIcon OwnPicture(const QString& name);

/// The program's own icon.
QIcon ProgramIcon();

}  // namespace orven
