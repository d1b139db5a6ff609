// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QGridLayout>
#include <QLabel>
#include <QProgressBar>
#include <QPushButton>
#include <chrono>
#include <cstdint>

#include "greetings/greeting_creator.h"

namespace orven {

/// The level of the microphone, 0 to 1000 thousandths of full scale, drawn in decibels: speech reaches the
/// middle, and red means distortion.
class LevelMeter : public QProgressBar {
  Q_OBJECT

 public:
  explicit LevelMeter(QWidget* parent);

  QSize sizeHint() const override;
  QSize minimumSizeHint() const override;

 protected:
  void paintEvent(QPaintEvent* event) override;
};

/// `Frame1` of the greeting creator: records a take from the microphone and plays it.
class SpeakerFrame : public QWidget {
  Q_OBJECT

 public:
  explicit SpeakerFrame(QWidget* parent);

  void ShowButtons(const CreatorButtons& buttons);
  void ShowRecLabel(bool on) { lblRec_->setVisible(on); }
  /// The bar's range is one minute, doubled until `seconds` fits.
  void ShowRecProgress(std::int32_t seconds);
  void ShowLevel(std::int32_t level) { prgLevel_->setValue(level); }
  void ShowPlayProgress(std::chrono::milliseconds position, std::chrono::milliseconds length);
  /// The length of the take, shown while nothing plays.
  void ShowLength(std::chrono::milliseconds length);

 signals:
  void Record();
  void StopRecord();
  void Play();
  void StopPlay();

 private:
  QGridLayout* MakeGroup(const QString& title, QBoxLayout& column);
  void AddRecording(QGridLayout& grid);
  void AddPlaying(QGridLayout& grid);
  void ShowTimes();

  QPushButton* cmdRec_;
  QPushButton* cmdStopRec_;
  QLabel* lblRec_;
  QProgressBar* ProgressBarRec_;
  LevelMeter* prgLevel_;
  QPushButton* cmdPlay_;
  QPushButton* cmdStopPlay_;
  QLabel* lblPlay_;
  QProgressBar* ProgressBar1_;
  std::chrono::milliseconds take_{0};
  std::chrono::milliseconds position_{0};
  std::chrono::milliseconds playing_{0};  ///< length of the take that plays; 0 for none
};

}  // namespace orven
