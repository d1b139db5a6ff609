// SPDX-License-Identifier: GPL-3.0-or-later
#include "greetings/frmGreetCLevel.h"

#include <QPainter>
#include <algorithm>
#include <cmath>

namespace orven {
namespace {

constexpr int kFullScale = 1000;
constexpr double kQuietest = -48;  // dB below full scale: the noise of a room
constexpr double kLoud = -9;       // dB
constexpr double kTooLoud = -3;    // dB

// Pixels at 100 %.
constexpr double kSegment = 5;
constexpr double kGap = 2;

constexpr double kUnlit = 0.22;  // how strongly what is not reached is drawn

/// Which part of the meter a level of so many decibels fills, 0 to 1.
double PartOf(double decibels) {
  return std::clamp(1 - decibels / kQuietest, 0.0, 1.0);
}

double Decibels(int level) {
  constexpr double kPerDecade = 20;
  return level <= 0 ? kQuietest : kPerDecade * std::log10(double(level) / kFullScale);
}

QColor ColourAt(double part) {
  if (part > PartOf(kTooLoud)) return {214, 69, 65};
  if (part > PartOf(kLoud)) return {230, 167, 52};
  return {58, 166, 92};
}

}  // namespace

LevelMeter::LevelMeter(QWidget* parent) : QProgressBar(parent) {
  setRange(0, kFullScale);
  setValue(0);
  setTextVisible(false);
  setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
}

QSize LevelMeter::sizeHint() const {
  return {QProgressBar::sizeHint().width(), fontMetrics().height() * 2 / 3};
}

QSize LevelMeter::minimumSizeHint() const {
  return {fontMetrics().height() * 4, sizeHint().height()};
}

void LevelMeter::paintEvent(QPaintEvent* /*event*/) {
  // In the screen's own pixels every edge is sharp, at any scaling.
  const double scale = devicePixelRatioF();
  QPainter painter(this);
  painter.scale(1 / scale, 1 / scale);
  const int width = int(std::lround(this->width() * scale));
  const int height = int(std::lround(this->height() * scale));
  const int segment = std::max(int(std::lround(kSegment * scale)), 1);
  const int step = segment + std::max(int(std::lround(kGap * scale)), 1);
  const double reached = PartOf(Decibels(value()));
  for (int x = 0; x + segment <= width; x += step) {
    const double part = double(x + segment) / width;
    auto colour = ColourAt(part);
    if (part > reached) colour = palette().color(QPalette::Text);
    if (part > reached) colour.setAlphaF(float(kUnlit));
    painter.fillRect(x, 0, segment, height, colour);
  }
}

}  // namespace orven
