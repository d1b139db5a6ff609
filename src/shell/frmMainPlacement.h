// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QList>
#include <QRect>
#include <QSize>

#include "core/settings_store.h"

namespace orven {

/// Twips in one pixel at 96 dots an inch: 1440 / 96.
inline constexpr int kTwipsPerPixel = 15;

/// Where a window goes that was stored with this geometry, in pixels: never smaller than `least`,
/// never larger than the screen it goes to, and always so that its title can be reached. `screens` are
/// the usable parts of the screens, the main one first. Any numbers are allowed in `stored`.
QRect FitOnScreens(const WindowGeometry& stored, QSize least, const QList<QRect>& screens);

}  // namespace orven
