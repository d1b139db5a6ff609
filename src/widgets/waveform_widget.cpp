// SPDX-License-Identifier: GPL-3.0-or-later
#include "widgets/waveform_widget.h"

#include <QMouseEvent>
#include <QPainter>
#include <algorithm>
#include <cmath>

namespace orven {
namespace {

constexpr int kHeight = 52;

// Pixels at 100 %.
constexpr double kBarWidth = 2;
constexpr double kBarGap = 1;
constexpr double kPositionWidth = 1;

/// Opacity of the part that has not been played yet, 0 to 1.
constexpr double kUnplayedStrength = 0.5;
constexpr double kBaselineStrength = 0.35;

/// Quieter messages are not scaled up to the full height, so that silence stays flat.
constexpr float kLeastLoudness = 0.1F;

int Round(double value) {
  return static_cast<int>(std::lround(value));
}

}  // namespace

WaveformWidget::WaveformWidget(QWidget* parent) : QWidget(parent) {
  setObjectName(QStringLiteral("Waveform"));
  setAccessibleName(tr("Waveform of the message"));
  setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
  setFixedHeight(kHeight);
}

void WaveformWidget::SetInset(int pixels) {
  inset_ = pixels;
  update();
}

void WaveformWidget::ShowWaveform(const Waveform& waveform) {
  waveform_ = waveform;
  loudest_ = kLeastLoudness;
  for (const float peak : waveform_.peaks) loudest_ = std::max(loudest_, peak);
  update();
}

void WaveformWidget::ShowProgress(std::chrono::milliseconds position, std::chrono::milliseconds length) {
  const bool playing = length.count() > 0;
  setCursor(playing ? Qt::PointingHandCursor : Qt::ArrowCursor);
  if (!playing) pointed_.reset();
  ShowPart(playing ? std::optional(std::clamp(double(position.count()) / double(length.count()), 0.0, 1.0))
                   : std::nullopt);
}

void WaveformWidget::ShowPart(std::optional<double> part) {
  const auto place = [this](std::optional<double> at) {
    return at ? Round(*at * width() * devicePixelRatioF()) : -1;
  };
  const bool seen = place(part) != place(played_);
  played_ = part;
  if (seen) update();
}

double WaveformWidget::PartAt(double x) const {
  return std::clamp((x - inset_) / std::max(width() - 2 * inset_, 1), 0.0, 1.0);
}

float WaveformWidget::PeakBetween(double from, double to) const {
  const auto count = waveform_.peaks.size();
  const auto first = std::min(static_cast<std::size_t>(from * double(count)), count - 1);
  const auto last = std::min(static_cast<std::size_t>(std::ceil(to * double(count))), count);
  float peak = 0;
  for (auto i = first; i < std::max(last, first + 1); ++i) peak = std::max(peak, waveform_.peaks[i]);
  return std::clamp(peak / loudest_, 0.0F, 1.0F);
}

void WaveformWidget::PaintBars(QPainter& painter, QRect area, double scale) const {
  const int bar = std::max(Round(kBarWidth * scale), 1);
  const int step = bar + std::max(Round(kBarGap * scale), 1);
  const int line = std::max(Round(scale), 1);
  const auto shown = pointed_ ? pointed_ : played_;
  const int reached = shown ? area.left() + Round(*shown * area.width()) : area.left();
  auto colour = palette().color(QPalette::Highlight);
  auto faint = colour;
  faint.setAlphaF(float(kUnplayedStrength));
  for (int x = area.left(); x + bar <= area.right() + 1; x += step) {
    const float peak =
        PeakBetween(double(x - area.left()) / area.width(), double(x + step - area.left()) / area.width());
    const int half = Round(double(peak) * (area.height() - line) / 2);
    const int top = area.top() + (area.height() - line) / 2 - half;
    painter.fillRect(x, top, bar, 2 * half + line, x + bar <= reached ? colour : faint);
  }
  if (!shown) return;
  const int width = std::max(Round(kPositionWidth * scale), 1);
  painter.fillRect(reached - width / 2, area.top(), width, area.height(), palette().color(QPalette::Text));
}

void WaveformWidget::paintEvent(QPaintEvent* /*event*/) {
  // Painting in device pixels keeps edges sharp at any scale.
  const double scale = devicePixelRatioF();
  QPainter painter(this);
  painter.scale(1 / scale, 1 / scale);
  const int inset = Round(inset_ * scale);
  const QRect area =
      QRect(0, 0, Round(width() * scale), Round(height() * scale)).adjusted(inset, 0, -inset, 0);
  if (area.width() <= 0) return;
  if (!waveform_.peaks.empty()) return PaintBars(painter, area, scale);
  auto quiet = palette().color(QPalette::Text);
  quiet.setAlphaF(float(kBaselineStrength));
  painter.fillRect(area.left(), area.center().y(), area.width(), std::max(Round(scale), 1), quiet);
}

void WaveformWidget::mousePressEvent(QMouseEvent* event) {
  if (event->button() != Qt::LeftButton || !played_) return event->ignore();
  pointed_ = PartAt(event->position().x());
  update();
}

void WaveformWidget::mouseMoveEvent(QMouseEvent* event) {
  if (!pointed_) return event->ignore();
  pointed_ = PartAt(event->position().x());
  update();
}

void WaveformWidget::mouseReleaseEvent(QMouseEvent* event) {
  if (event->button() != Qt::LeftButton || !pointed_) return event->ignore();
  const double part = *pointed_;
  pointed_.reset();
  update();
  emit Sought(part);
}

}  // namespace orven
