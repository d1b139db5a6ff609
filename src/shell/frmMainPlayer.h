// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QLabel>
#include <QWidget>
#include <chrono>

#include "platform/waveform.h"
#include "shell/frmMainSlider.h"
#include "widgets/button_bar.h"
#include "widgets/waveform_widget.h"

namespace orven {

/// The player of messages: `ToolBarPlayer`, the message's picture above `Slider1`, and the clock
/// beside them.
class PlayerPanel : public QWidget {
  Q_OBJECT

 public:
  explicit PlayerPanel(QWidget* parent);

  ButtonBar& ToolBarPlayer() { return *bar_; }
  SeekSlider& Slider1() { return *slider_; }
  WaveformWidget& Picture() { return *picture_; }

  void ShowWaveform(const Waveform& waveform);
  void ShowProgress(std::chrono::milliseconds position, std::chrono::milliseconds length);

 protected:
  void changeEvent(QEvent* event) override;

 private:
  void AlignPicture();
  void ShowTimes();

  ButtonBar* bar_;
  WaveformWidget* picture_;
  SeekSlider* slider_;
  QLabel* times_;
  std::chrono::milliseconds position_{0};
  std::chrono::milliseconds playing_length_{0};
  std::chrono::milliseconds selected_length_{0};
};

}  // namespace orven
