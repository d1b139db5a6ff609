// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QWidget>
#include <chrono>
#include <optional>

#include "platform/wave.h"

namespace orven {

/// Draws a message's waveform with the position that is being played; without a message, a flat line. A click
/// or a drag seeks.
class WaveformWidget : public QWidget {
  Q_OBJECT

 public:
  explicit WaveformWidget(QWidget* parent);

  void ShowWaveform(const Waveform& waveform);
  /// How far it has been played; a length of 0 when nothing plays.
  void ShowProgress(std::chrono::milliseconds position, std::chrono::milliseconds length);

  /// Pixels left free at both ends, so that the waveform lines up with a slider's range.
  void SetInset(int pixels);

 signals:
  /// The user seeks to this part of the message, 0 to 1.
  void Sought(double part);

 protected:
  void paintEvent(QPaintEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;
  void mouseMoveEvent(QMouseEvent* event) override;
  void mouseReleaseEvent(QMouseEvent* event) override;

 private:
  double PartAt(double x) const;
  void ShowPart(std::optional<double> part);
  float PeakBetween(double from, double to) const;
  void PaintBars(QPainter& painter, QRect area, double scale) const;

  Waveform waveform_;
  float loudest_ = 0;
  std::optional<double> played_;   ///< part that has been played
  std::optional<double> pointed_;  ///< part under the dragged mouse
  int inset_ = 0;
};

}  // namespace orven
