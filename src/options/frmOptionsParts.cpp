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

constexpr int kButtonIcon = 16;
constexpr int kCharacters = 24;  // the list does not grow with long greeting names

constexpr double kFullScale = 1000;
const QColor kHeard(58, 166, 92);

}  // namespace

frmOptionsGreetings::frmOptionsGreetings(GreetingPlayer& engine, QWidget* parent)
    : QWidget(parent),
      engine_(engine),
      CmbGreetsMessages_(MakeChild<QComboBox>(this)),
      tlbrGreetingPlayer_(MakeChild<ButtonBar>(QStringLiteral("tlbrGreetingPlayer"), tr("Greetings"), this)) {
  setObjectName(QStringLiteral("frmOptionsGreetings"));
  CmbGreetsMessages_->setObjectName(QStringLiteral("CmbGreetsMessages"));
  CmbGreetsMessages_->setAccessibleName(tr("Greeting"));
  CmbGreetsMessages_->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
  CmbGreetsMessages_->setMinimumContentsLength(kCharacters);
  IgnoreStrayWheel(*CmbGreetsMessages_);
  auto& bar = *tlbrGreetingPlayer_;
  bar.setIconSize({kButtonIcon, kButtonIcon});
  bar.AddButton({"Play", tr("Play"), tr("Play the greeting"), "media-playback-start"});
  bar.AddButton({"Stop", tr("Stop"), tr("Stop playing"), "media-playback-stop"});
  bar.AddButton({"Add", tr("Add"), tr("Make a greeting"), "list-add"});
  bar.AddButton({"Delete", tr("Delete"), tr("Delete the greeting"), "edit-delete"});
  auto* label = MakeChild<QLabel>(tr("&Greeting:"), this);
  label->setBuddy(CmbGreetsMessages_);
  auto* row = MakeChild<QHBoxLayout>(this);
  row->setContentsMargins(0, 0, 0, 0);
  row->addWidget(label);
  row->addWidget(CmbGreetsMessages_, 1);
  row->addWidget(tlbrGreetingPlayer_);
  connect(tlbrGreetingPlayer_, &ButtonBar::ButtonClick, this, &frmOptionsGreetings::Press);
}

void frmOptionsGreetings::Fill(const std::string& selected) {
  Show(engine_.Fill(selected));
}

std::string frmOptionsGreetings::Selected() const {
  return CmbGreetsMessages_->currentText().toStdString();
}

void frmOptionsGreetings::Press(const QString& key) {
  auto list = List();
  engine_.ButtonClick(key.toStdString(), list);
  Show(list);
}

void frmOptionsGreetings::Show(const GreetingList& list) {
  FillList(*CmbGreetsMessages_, list.names, list.selected);
}

GreetingList frmOptionsGreetings::List() const {
  return {ListItems(*CmbGreetsMessages_), Selected()};
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
