// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QProgressBar>

namespace orven {

/// How loud the microphone is: 0 to 1000 thousandths of full scale. Drawn in decibels, as loudness is
/// heard: speech fills the middle, and red is where a take is distorted.
class LevelMeter : public QProgressBar {
  Q_OBJECT

 public:
  explicit LevelMeter(QWidget* parent);

  QSize sizeHint() const override;
  QSize minimumSizeHint() const override;

 protected:
  void paintEvent(QPaintEvent* event) override;
};

}  // namespace orven
