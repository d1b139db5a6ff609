// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QSlider>

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

}  // namespace orven
