// SPDX-License-Identifier: GPL-3.0-or-later
#include "shell/frmMainPlacement.h"

#include <algorithm>

namespace orven {
namespace {

/// Larger than any desktop, and small enough that sums of coordinates never overflow.
constexpr int kFarthest = 1'000'000;

/// How much of the title must be seen to take hold of the window.
constexpr QSize kHandle{100, 24};

int Pixels(std::int32_t twips) {
  return std::clamp(twips / kTwipsPerPixel, -kFarthest, kFarthest);
}

bool TitleIsReachable(const QRect& window, const QRect& screen) {
  const QRect title(window.topLeft(), QSize(window.width(), kHandle.height()));
  const auto seen = title.intersected(screen);
  return seen.height() >= kHandle.height() && seen.width() >= std::min(kHandle.width(), window.width());
}

/// Distance of the window's centre from the screen's, squared.
std::int64_t Distance(const QRect& window, const QRect& screen) {
  const std::int64_t x = window.center().x() - screen.center().x();
  const std::int64_t y = window.center().y() - screen.center().y();
  return x * x + y * y;
}

int LimitedSize(int size, int least, int most) {
  return std::min(std::max(size, least), most);
}

QRect Limited(QRect window, QSize least, const QRect& screen) {
  window.setWidth(LimitedSize(window.width(), least.width(), screen.width()));
  window.setHeight(LimitedSize(window.height(), least.height(), screen.height()));
  return window;
}

QRect MovedInto(QRect window, const QRect& screen) {
  window.moveLeft(std::clamp(window.left(), screen.left(), screen.right() + 1 - window.width()));
  window.moveTop(std::clamp(window.top(), screen.top(), screen.bottom() + 1 - window.height()));
  return window;
}

}  // namespace

QRect FitOnScreens(const WindowGeometry& stored, QSize least, const QList<QRect>& screens) {
  const QRect window(Pixels(stored.left), Pixels(stored.top), std::max(Pixels(stored.width), least.width()),
                     std::max(Pixels(stored.height), least.height()));
  if (screens.isEmpty()) return window;
  const QRect* nearest = &screens.first();
  for (const auto& screen : screens) {
    const auto limited = Limited(window, least, screen);
    if (TitleIsReachable(limited, screen)) return limited;
    if (Distance(limited, screen) < Distance(limited, *nearest)) nearest = &screen;
  }
  return MovedInto(Limited(window, least, *nearest), *nearest);
}

}  // namespace orven
