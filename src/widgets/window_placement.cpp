// SPDX-License-Identifier: GPL-3.0-or-later
#include "widgets/window_placement.h"

#include <algorithm>

namespace orven {
namespace {

/// Larger than any desktop, and small enough that sums of coordinates never overflow.
constexpr int kFarthest = 1'000'000;

int Pixels(std::int32_t twips) {
  return std::clamp(twips / kTwipsPerPixel, -kFarthest, kFarthest);
}

std::int64_t Area(const QRect& area) {
  return area.isEmpty() ? 0 : std::int64_t{area.width()} * area.height();
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
  const QRect* best = &screens.first();
  std::int64_t seen = 0;
  for (const auto& screen : screens) {
    const auto here = Area(window.intersected(screen));
    const auto there = Area(window.intersected(*best));
    if (here > there || (there == 0 && Distance(window, screen) < Distance(window, *best))) best = &screen;
    seen += here;
  }
  // A window may extend across two screens.
  if (seen == Area(window)) return window;
  return MovedInto(Limited(window, least, *best), *best);
}

}  // namespace orven
