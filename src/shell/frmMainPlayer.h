// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QLabel>
#include <QSlider>
#include <QWidget>
#include <chrono>

#include "platform/waveform.h"
#include "widgets/button_bar.h"
#include "widgets/waveform_widget.h"

namespace orven {

/// A slider that says where in a sound we are, and that a person can move: a click on its groove goes
/// there at once, dragging when it is let go.
class SeekSlider : public QSlider {
  Q_OBJECT

 public:
  explicit SeekSlider(QWidget* parent);

  /// Sets it for the program, unless a person holds it.
  void ShowValue(int value);
  /// A slider that is disabled is let go.
  void Enable(bool on);

 signals:
  /// A person wants the sound to go on from `value`.
  void Sought(int value);

 protected:
  void mousePressEvent(QMouseEvent* event) override;

 private:
  int ValueAt(QPoint point) const;
  bool IsOnHandle(QPoint point) const;
};

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
