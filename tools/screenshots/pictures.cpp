// SPDX-License-Identifier: GPL-3.0-or-later
#include "screenshots/pictures.h"

#include <QPainter>
#include <QTest>
#include <cstdio>

namespace orven::test {

QPalette DarkPalette() {
  QPalette palette(QColor(53, 55, 58), QColor(42, 44, 47));
  palette.setColor(QPalette::Base, QColor(30, 32, 34));
  palette.setColor(QPalette::AlternateBase, QColor(38, 40, 43));
  palette.setColor(QPalette::Highlight, QColor(61, 174, 233));
  palette.setColor(QPalette::HighlightedText, Qt::black);
  return palette;
}

QPixmap Shown(QWidget& window) {
  window.show();
  QTest::qWait(100);  // it is laid out when the event loop is idle
  return window.grab();
}

bool Save(const QList<QPixmap>& pictures, const QString& path) {
  constexpr int kGap = 12;
  QSizeF size(-kGap, 0);
  for (const auto& picture : pictures) {
    const auto own = picture.deviceIndependentSize();
    size = {size.width() + kGap + own.width(), std::max(size.height(), own.height())};
  }
  const double scale = pictures.first().devicePixelRatio();
  QPixmap whole((size * scale).toSize());
  whole.setDevicePixelRatio(scale);
  whole.fill(Qt::transparent);
  QPainter painter(&whole);
  double x = 0;
  for (const auto& picture : pictures) {
    painter.drawPixmap(QPointF(x, 0), picture);
    x += picture.deviceIndependentSize().width() + kGap;
  }
  painter.end();
  std::puts(qPrintable(path));
  return whole.save(path);
}

}  // namespace orven::test
