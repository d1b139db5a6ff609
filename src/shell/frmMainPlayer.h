// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QLabel>
#include <QSlider>
#include <QWidget>
#include <chrono>

#include "records/local_player.h"
#include "widgets/button_bar.h"
#include "widgets/waveform_widget.h"

namespace orven {

/// A slider for the position in a message. A click on its groove seeks at once, a drag when it is released.
class SeekSlider : public QSlider {
  Q_OBJECT

 public:
  explicit SeekSlider(QWidget* parent);

  /// Shows a position, unless the user is dragging the slider.
  void ShowValue(int value);
  /// Disabling also ends a drag.
  void Enable(bool on);

 signals:
  /// The user seeks to `value`.
  void Sought(int value);

 protected:
  void mousePressEvent(QMouseEvent* event) override;

 private:
  int ValueAt(QPoint point) const;
  bool IsOnHandle(QPoint point) const;
};

/// The message player: `ToolBarPlayer`, the waveform above `Slider1`, and the times next to them.
class PlayerPanel : public QWidget, public PlayerView {
  Q_OBJECT

 public:
  explicit PlayerPanel(QWidget* parent);

  ButtonBar& ToolBarPlayer() { return *bar_; }
  SeekSlider& Slider1() { return *slider_; }
  WaveformWidget& Picture() { return *picture_; }

  void EnableSlider(bool on) override { slider_->Enable(on); }
  void ShowSlider(std::int32_t value) override { slider_->ShowValue(value); }
  void ShowWaveform(const Waveform& waveform) override;
  void ShowProgress(std::chrono::milliseconds position, std::chrono::milliseconds length) override;

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
