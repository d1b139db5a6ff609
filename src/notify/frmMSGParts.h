// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QFrame>
#include <QIcon>
#include <QLabel>

namespace orven {

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

/// Something to click on without the focus: a picture, a text, or, framed as a button is, both.
class CommandTile : public QFrame {
  Q_OBJECT

 public:
  /// Names of the controls, null for one that there is not; `icon` is a Freedesktop icon name.
  struct Look {
    const char* label;
    QString caption;
    const char* picture;
    const char* icon;
  };

  CommandTile(const Look& look, QWidget* parent);

 signals:
  /// The mouse button was released over the tile on which it was pressed.
  void Clicked();

 protected:
  bool event(QEvent* event) override;
  void changeEvent(QEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;
  void mouseReleaseEvent(QMouseEvent* event) override;
  void paintEvent(QPaintEvent* event) override;

 private:
  void ShowPicture();

  QIcon icon_;
  QLabel* picture_ = nullptr;
  bool framed_;
  bool pressed_ = false;
};

}  // namespace orven
