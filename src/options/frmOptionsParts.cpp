// SPDX-License-Identifier: GPL-3.0-or-later
#include "options/frmOptionsParts.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QPainter>
#include <QStyleOptionSlider>
#include <algorithm>

#include "widgets/controls.h"

namespace orven {
namespace {

constexpr double kFullScale = 1000;
const QColor kHeard(58, 166, 92);

}  // namespace

frmOptionsGreetings::frmOptionsGreetings(GreetingPlayer& engine, QWidget* parent)
    : QWidget(parent),
      engine_(engine),
      sounds_(MakeChild<SoundBox>(
          SoundBox::Texts{"CmbGreetsMessages", "tlbrGreetingPlayer", tr("Greeting"), tr("Greetings"),
                          tr("Play the greeting"), tr("Make a greeting"), tr("Delete the greeting")},
          this)) {
  setObjectName(QStringLiteral("frmOptionsGreetings"));
  auto* row = MakeFlat<QHBoxLayout>(this);
  row->addWidget(MakeCaption(tr("&Greeting:"), &sounds_->List()));
  row->addWidget(sounds_, 1);
  connect(sounds_, &SoundBox::ButtonClick, this, [this](const QString& key) {
    auto list = sounds_->Sounds();
    engine_.ButtonClick(key.toStdString(), list);
    sounds_->Show(list);
  });
}

void frmOptionsGreetings::Fill(const std::string& selected) {
  sounds_->Show(engine_.Fill(selected));
}

std::string frmOptionsGreetings::Selected() const {
  return sounds_->Sounds().selected;
}

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

/// Pixels from the left to the middle of the slider's handle when the handle is at `part` of its range.
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
