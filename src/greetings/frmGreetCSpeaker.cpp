// SPDX-License-Identifier: GPL-3.0-or-later
#include "greetings/frmGreetCSpeaker.h"

#include <QBoxLayout>
#include <QGroupBox>
#include <QPainter>
#include <algorithm>
#include <cmath>
#include <iterator>
#include <limits>
#include <utility>
#include <vector>

#include "widgets/controls.h"
#include "widgets/dialog_parts.h"

namespace orven {
namespace {

constexpr int kFullScale = 1000;
constexpr double kQuietest = -48;  // dB; about the noise of a quiet room
constexpr double kLoud = -9;       // dB
constexpr double kTooLoud = -3;    // dB

// Pixels at 100 %.
constexpr double kSegment = 5;
constexpr double kGap = 2;

constexpr double kUnlit = 0.22;  // opacity of the segments above the level

/// The part of the meter, 0 to 1, that a level in dB fills.
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

constexpr int kMinute = 60;
constexpr int kColumns = 3;  // two buttons and a label

/// "1:05"
QString Minutes(std::int64_t seconds) {
  return QStringLiteral("%1:%2").arg(seconds / kMinute).arg(seconds % kMinute, 2, 10, QChar(u'0'));
}

QString Minutes(std::chrono::milliseconds time) {
  return Minutes(std::chrono::round<std::chrono::seconds>(time).count());
}

/// The range in seconds of a bar that shows `seconds`.
int RangeFor(std::int32_t seconds) {
  std::int64_t range = kMinute;
  while (range < seconds) range *= 2;
  return int(std::min<std::int64_t>(range, std::numeric_limits<int>::max()));
}

/// Enables and disables buttons, given in the order of their use. When the focused one is disabled, the focus
/// moves to the next enabled button, else to the last one before it.
void EnableButtons(const std::vector<std::pair<QPushButton*, bool>>& buttons) {
  for (const auto& [button, on] : buttons) {
    if (on) button->setEnabled(true);
  }
  const auto loses_focus = [](const auto& entry) {
    return !entry.second && entry.first->window()->focusWidget() == entry.first;
  };
  const auto enabled = [](const auto& entry) { return entry.second; };
  const auto lost = std::ranges::find_if(buttons, loses_focus);
  if (lost != buttons.end()) {
    const auto after = std::find_if(lost, buttons.end(), enabled);
    const auto before = std::find_if(std::make_reverse_iterator(lost), buttons.rend(), enabled);
    if (after != buttons.end()) {
      after->first->setFocus();
    } else if (before != buttons.rend()) {
      before->first->setFocus();
    }
  }
  for (const auto& [button, on] : buttons) {
    if (!on) button->setEnabled(false);
  }
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
  // Painting in device pixels keeps the edges sharp at any scaling.
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

SpeakerFrame::SpeakerFrame(QWidget* parent)
    : QWidget(parent),
      cmdRec_(MakeButton("cmdRec", tr("&Record"), tr("Record a greeting with the microphone"), this,
                         "media-record")),
      cmdStopRec_(
          MakeButton("cmdStopRec", tr("St&op"), tr("End the recording"), this, "media-playback-stop")),
      lblRec_(MakeNamed<QLabel>("lblRec", this)),
      ProgressBarRec_(MakeNamed<QProgressBar>("ProgressBarRec", this)),
      prgLevel_(MakeNamed<LevelMeter>("prgLevel", this)),
      cmdPlay_(MakeButton("cmdPlay", tr("Start &Play"), tr("Listen to the recording"), this,
                          "media-playback-start")),
      cmdStopPlay_(
          MakeButton("cmdStopPlay", tr("Stop Pla&y"), tr("Stop listening"), this, "media-playback-stop")),
      lblPlay_(MakeNamed<QLabel>("lblPlay", this)),
      ProgressBar1_(MakeNamed<QProgressBar>("ProgressBar1", this)) {
  setObjectName(QStringLiteral("Frame1"));
  auto* column = MakeChild<QVBoxLayout>(this);
  AddRecording(*MakeGroup(tr("Record with the microphone"), *column));
  column->addStretch(1);
  AddPlaying(*MakeGroup(tr("Listen"), *column));
  ShowRecProgress(0);
  ShowPlayProgress({}, {});
  ShowRecLabel(false);
  connect(cmdRec_, &QPushButton::clicked, this, &SpeakerFrame::Record);
  connect(cmdStopRec_, &QPushButton::clicked, this, &SpeakerFrame::StopRecord);
  connect(cmdPlay_, &QPushButton::clicked, this, &SpeakerFrame::Play);
  connect(cmdStopPlay_, &QPushButton::clicked, this, &SpeakerFrame::StopPlay);
}

QGridLayout* SpeakerFrame::MakeGroup(const QString& title, QBoxLayout& column) {
  auto* group = MakeChild<QGroupBox>(title, this);
  column.addWidget(group);
  auto* grid = MakeChild<QGridLayout>(group);
  grid->setColumnStretch(kColumns - 1, 1);
  return grid;
}

void SpeakerFrame::AddRecording(QGridLayout& grid) {
  lblRec_->setTextFormat(Qt::RichText);
  lblRec_->setText(QStringLiteral("<span style='color:#d64541'>●</span> ") + tr("Recording"));
  lblRec_->setAccessibleName(tr("Recording"));
  lblRec_->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
  auto policy = lblRec_->sizePolicy();
  policy.setRetainSizeWhenHidden(true);  // it blinks
  lblRec_->setSizePolicy(policy);
  ProgressBarRec_->setAccessibleName(tr("Time recorded"));
  prgLevel_->setAccessibleName(tr("Level of the microphone"));
  prgLevel_->setToolTip(tr("Level of the microphone: it should hardly ever turn red"));
  grid.addWidget(cmdRec_, 0, 0);
  grid.addWidget(cmdStopRec_, 0, 1);
  grid.addWidget(lblRec_, 0, 2);
  grid.addWidget(ProgressBarRec_, 1, 0, 1, kColumns);
  grid.addWidget(prgLevel_, 2, 0, 1, kColumns);
}

void SpeakerFrame::AddPlaying(QGridLayout& grid) {
  lblPlay_->setAccessibleName(tr("Time played and length of the recording"));
  lblPlay_->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
  ProgressBar1_->setAccessibleName(tr("Position in the recording"));
  ProgressBar1_->setTextVisible(false);
  ProgressBar1_->setFixedHeight(prgLevel_->sizeHint().height());  // it shows no text
  grid.addWidget(cmdPlay_, 0, 0);
  grid.addWidget(cmdStopPlay_, 0, 1);
  grid.addWidget(lblPlay_, 0, 2);
  grid.addWidget(ProgressBar1_, 1, 0, 1, kColumns);
}

void SpeakerFrame::ShowButtons(const CreatorButtons& buttons) {
  EnableButtons({{cmdRec_, buttons.cmdRec},
                 {cmdStopRec_, buttons.cmdStopRec},
                 {cmdPlay_, buttons.cmdPlay},
                 {cmdStopPlay_, buttons.cmdStopPlay}});
}

void SpeakerFrame::ShowRecProgress(std::int32_t seconds) {
  const int shown = std::max(seconds, 0);
  ProgressBarRec_->setFormat(Minutes(std::int64_t{shown}));
  ProgressBarRec_->setRange(0, RangeFor(shown));
  ProgressBarRec_->setValue(shown);
}

void SpeakerFrame::ShowPlayProgress(std::chrono::milliseconds position, std::chrono::milliseconds length) {
  constexpr std::int64_t kLongest = std::numeric_limits<int>::max();
  const auto end = int(std::clamp<std::int64_t>(length.count(), 0, kLongest));
  ProgressBar1_->setRange(0, std::max(end, 1));  // a range of 0 would show a busy bar
  ProgressBar1_->setValue(int(std::clamp<std::int64_t>(position.count(), 0, end)));
  position_ = position;
  playing_ = length;
  ShowTimes();
}

void SpeakerFrame::ShowLength(std::chrono::milliseconds length) {
  take_ = length;
  ShowTimes();
}

void SpeakerFrame::ShowTimes() {
  const auto length = playing_.count() > 0 ? playing_ : take_;
  lblPlay_->setText(Minutes(position_) + QStringLiteral(" / ") + Minutes(length));
}

}  // namespace orven
