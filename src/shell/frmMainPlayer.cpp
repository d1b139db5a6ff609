// SPDX-License-Identifier: GPL-3.0-or-later
#include "shell/frmMainPlayer.h"

#include <QEvent>
#include <QHBoxLayout>
#include <QMouseEvent>
#include <QSignalBlocker>
#include <QStyle>
#include <QStyleOptionSlider>
#include <QVBoxLayout>

#include "widgets/controls.h"

namespace orven {
namespace {

/// "1:05". Rounded, so that a message in its last second shows its full length.
QString Minutes(std::chrono::milliseconds time) {
  const auto seconds = std::chrono::round<std::chrono::seconds>(time).count();
  return QStringLiteral("%1:%2").arg(seconds / 60).arg(seconds % 60, 2, 10, QChar(u'0'));
}

}  // namespace

SeekSlider::SeekSlider(QWidget* parent) : QSlider(Qt::Horizontal, parent) {
  connect(this, &QSlider::sliderReleased, this, [this] { emit Sought(value()); });
  // Keyboard and wheel: the position is already set, the value follows.
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
  // Moves the handle under the mouse, so that a click anywhere starts a drag.
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

PlayerPanel::PlayerPanel(QWidget* parent)
    : QWidget(parent),
      bar_(MakeChild<ButtonBar>(QStringLiteral("ToolBarPlayer"), tr("Player"), this)),
      picture_(MakeChild<WaveformWidget>(this)),
      slider_(MakeNamed<SeekSlider>("Slider1", this)),
      times_(MakeNamed<QLabel>("lblTimes", this)) {
  bar_->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
  bar_->AddButton({"Play", tr("Play"), tr("Play the selected message"), "media-playback-start"});
  bar_->AddButton({"Stop", tr("Stop"), tr("Stop playing"), "media-playback-stop"});

  slider_->setAccessibleName(tr("Position in the message"));
  slider_->setRange(0, LocalPlayer::kSliderLast);
  slider_->setEnabled(false);
  times_->setAccessibleName(tr("Time played and length of the message"));
  times_->setAlignment(Qt::AlignRight | Qt::AlignVCenter);

  auto* message = MakeChild<QVBoxLayout>();
  message->setSpacing(0);
  message->addWidget(picture_);
  message->addWidget(slider_);
  auto* row = MakeFlat<QHBoxLayout>(this);
  row->addWidget(bar_);
  row->addLayout(message, 1);
  row->addWidget(times_);
  AlignPicture();
  ShowTimes();
}

void PlayerPanel::AlignPicture() {
  bar_->setIconSize({16, 16});
  picture_->SetInset(style()->pixelMetric(QStyle::PM_SliderLength, nullptr, slider_) / 2);
  times_->setMinimumWidth(times_->fontMetrics().horizontalAdvance(QStringLiteral("00:00 / 00:00")));
}

void PlayerPanel::ShowWaveform(const Waveform& waveform) {
  picture_->ShowWaveform(waveform);
  selected_length_ = waveform.length;
  ShowTimes();
}

void PlayerPanel::ShowProgress(std::chrono::milliseconds position, std::chrono::milliseconds length) {
  picture_->ShowProgress(position, length);
  position_ = position;
  playing_length_ = length;
  ShowTimes();
}

void PlayerPanel::ShowTimes() {
  const auto length = playing_length_.count() > 0 ? playing_length_ : selected_length_;
  times_->setText(Minutes(position_) + QStringLiteral(" / ") + Minutes(length));
}

void PlayerPanel::changeEvent(QEvent* event) {
  QWidget::changeEvent(event);
  if (event->type() == QEvent::StyleChange || event->type() == QEvent::FontChange) AlignPicture();
}

}  // namespace orven
