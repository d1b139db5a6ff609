// SPDX-License-Identifier: GPL-3.0-or-later
#include "shell/frmMainSlider.h"

#include <QMouseEvent>
#include <QSignalBlocker>
#include <QStyle>
#include <QStyleOptionSlider>

namespace orven {

SeekSlider::SeekSlider(QWidget* parent) : QSlider(Qt::Horizontal, parent) {
  connect(this, &QSlider::sliderReleased, this, [this] { emit Sought(value()); });
  // The keyboard and the wheel: the position is set already, the value follows.
  connect(this, &QSlider::actionTriggered, this, [this] {
    if (!isSliderDown()) emit Sought(sliderPosition());
  });
}

void SeekSlider::ShowValue(int value) {
  if (!isSliderDown()) setValue(value);
}

void SeekSlider::Enable(bool on) {
  if (!on && isSliderDown()) {
    const QSignalBlocker quiet(this);
    setSliderDown(false);
  }
  setEnabled(on);
}

void SeekSlider::mousePressEvent(QMouseEvent* event) {
  const auto point = event->position().toPoint();
  // With its handle brought below the mouse, a click anywhere is the beginning of a drag.
  if (event->button() == Qt::LeftButton && !IsOnHandle(point)) setValue(ValueAt(point));
  QSlider::mousePressEvent(event);
}

bool SeekSlider::IsOnHandle(QPoint point) const {
  QStyleOptionSlider option;
  initStyleOption(&option);
  return style()->subControlRect(QStyle::CC_Slider, &option, QStyle::SC_SliderHandle, this).contains(point);
}

int SeekSlider::ValueAt(QPoint point) const {
  QStyleOptionSlider option;
  initStyleOption(&option);
  const auto groove = style()->subControlRect(QStyle::CC_Slider, &option, QStyle::SC_SliderGroove, this);
  const auto handle = style()->subControlRect(QStyle::CC_Slider, &option, QStyle::SC_SliderHandle, this);
  return QStyle::sliderValueFromPosition(minimum(), maximum(), point.x() - groove.left() - handle.width() / 2,
                                         groove.width() - handle.width(), option.upsideDown);
}

}  // namespace orven
