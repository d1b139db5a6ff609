// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QLabel>
#include <QScrollArea>

namespace orven {

/// A label that wraps and is as high as its text, which is never markup. Where it cannot be that high, it
/// shows the beginning.
class WholeText : public QLabel {
  Q_OBJECT

 public:
  /// It is at least `least_width` pixels wide and `least_lines` high.
  WholeText(const char* name, QWidget* parent, int least_width, int least_lines = 0);

  QSize minimumSizeHint() const override;

 protected:
  void resizeEvent(QResizeEvent* event) override;
  void paintEvent(QPaintEvent* event) override;

 private:
  const int least_lines_;
};

/// The page of a window that grows with it for as long as the screen has room; then the page scrolls, up and
/// down only.
class GrowingPage : public QScrollArea {
  Q_OBJECT

 public:
  /// Shows `content`, and owns it.
  GrowingPage(QWidget* content, QWidget* parent);

  /// Scrolls to `part` of the content, once it has its place.
  void Reveal(QWidget& part);

  /// Makes the window as small as it can be with all of the content.
  void Fit();

  QSize sizeHint() const override;
  QSize minimumSizeHint() const override;

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;
  void showEvent(QShowEvent* event) override;

 private:
  void Grow();
};

}  // namespace orven
