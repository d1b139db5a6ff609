// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QLabel>
#include <QWidget>
#include <utility>

namespace orven {

/// Makes an object that belongs to the parent among the arguments, or to the layout that it is given
/// to, and is deleted with it, as everything in a window is.
template <class Object, class... Arguments>
Object* MakeChild(Arguments&&... arguments) {
  return new Object(std::forward<Arguments>(arguments)...);  // NOLINT(cppcoreguidelines-owning-memory)
}

/// Keeps the mouse wheel from changing `control`, a list or a slider, unless a person has chosen it: what
/// it shows is a choice, and a wheel that turns to scroll or by accident is none.
void IgnoreStrayWheel(QWidget& control);

/// A line of text from outside, which may be of any length: one that does not fit is written smaller; what
/// does not fit then either is left out, and shown while the mouse is over it. text() is always the whole.
class ElidedLabel : public QLabel {
  Q_OBJECT

 public:
  ElidedLabel(Qt::TextElideMode mode, QWidget* parent);

  QSize minimumSizeHint() const override;

 protected:
  bool event(QEvent* event) override;
  void paintEvent(QPaintEvent* event) override;

 private:
  QFont FittingFont() const;

  Qt::TextElideMode mode_;
};

}  // namespace orven
