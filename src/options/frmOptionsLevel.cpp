// SPDX-License-Identifier: GPL-3.0-or-later
#include "options/frmOptionsLevel.h"

#include <QPainter>
#include <QStyleOptionSlider>
#include <algorithm>

namespace orven {
namespace {

constexpr double kFullScale = 1000;
const QColor kHeard(58, 166, 92);

}  // namespace

SilenceMeter::SilenceMeter(const QSlider& slider, QWidget* parent) : QWidget(parent), slider_(slider) {
  setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
  connect(&slider, &QSlider::valueChanged, this, qOverload<>(&QWidget::update));
}

void SilenceMeter::ShowLevel(std::optional<int> level) {
  if (level == level_) return;
  level_ = level;
  update();
}

QSize SilenceMeter::sizeHint() const {
  return {slider_.sizeHint().width(), fontMetrics().height() / 2};
}

/// Pixels from the left at which the middle of the slider's handle is when it stands at `part` of its range.
double SilenceMeter::PlaceOf(double part) const {
  QStyleOptionSlider option;
  option.initFrom(&slider_);
  const double handle = style()->pixelMetric(QStyle::PM_SliderLength, &option, &slider_);
  return handle / 2 + std::clamp(part, 0.0, 1.0) * (width() - handle);
}

void SilenceMeter::paintEvent(QPaintEvent* /*event*/) {
  QPainter painter(this);
  auto quiet = palette().color(QPalette::Text);
  quiet.setAlphaF(0.15F);
  const auto bar = [&](double from, double to, const QColor& colour) {
    if (to > from) painter.fillRect(QRectF(from, 0, to - from, height()), colour);
  };
  bar(PlaceOf(0), PlaceOf(1), quiet);
  const double silence = PlaceOf(double(slider_.value()) / slider_.maximum());
  if (level_) {
    const double reached = PlaceOf(*level_ / kFullScale);
    quiet.setAlphaF(0.45F);
    bar(PlaceOf(0), std::min(reached, silence), quiet);
    bar(silence, reached, kHeard);
  }
  painter.fillRect(QRectF(silence - 1, 0, 2, height()), palette().color(QPalette::Text));
}

}  // namespace orven
