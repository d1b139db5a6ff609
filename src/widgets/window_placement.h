// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QList>
#include <QRect>
#include <QSize>

#include "core/settings_store.h"

namespace orven {

/// Twips in one pixel at 96 dots an inch: 1440 / 96.
inline constexpr int kTwipsPerPixel = 15;

/// Room for the desktop's window frame, whose size is unknown before the window is shown.
inline constexpr QSize kWindowFrame{8, 32};

/// Where to show a window with this stored geometry, in pixels. A window that is fully visible there, on one
/// screen or across several, stays. Any other is moved onto the screen that shows most of it, or the nearest
/// one, and shrunk to fit. It is never smaller than `least`. `screens` are the usable areas of the screens,
/// the main one first. `stored` may hold any numbers.
QRect FitOnScreens(const WindowGeometry& stored, QSize least, const QList<QRect>& screens);

}  // namespace orven
