// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QIcon>
#include <QPalette>

#include "records/call_list.h"

namespace orven {

/// Chooses the icon theme that goes with a light or a dark window, where it is installed. Icons that
/// exist already follow by themselves.
void UseIconTheme(const QPalette& palette);

/// An icon of the theme, with its Freedesktop name; null when the theme has none.
QIcon ThemeIcon(const char* name);

/// The program's own icon.
QIcon ProgramIcon();

/// The picture of a row of the call list.
const QIcon& CallPicture(CallIcon icon);

}  // namespace orven
