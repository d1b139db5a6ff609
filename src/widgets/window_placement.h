// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QList>
#include <QRect>
#include <QSize>

#include "core/settings_store.h"

namespace orven {

/// Twips in one pixel at 96 dots an inch: 1440 / 96.
inline constexpr int kTwipsPerPixel = 15;

/// Room for the frame that the desktop puts around a window, which is not known before it is shown.
inline constexpr QSize kWindowFrame{8, 32};

/// Where a window goes that was stored with this geometry, in pixels: where it was when all of it can
/// be seen there, on one screen or across several; else whole onto the screen that shows most of it, or
/// is nearest, never larger than that. It is never smaller than `least`. `screens` are
/// the usable parts of the screens, the main one first. Any numbers are allowed in `stored`.
QRect FitOnScreens(const WindowGeometry& stored, QSize least, const QList<QRect>& screens);

}  // namespace orven
