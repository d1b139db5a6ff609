// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QFrame>
#include <QIcon>
#include <QLabel>
#include <QList>
#include <QPointer>
#include <QScreen>
#include <QWidget>
#include <QWindow>

#include "notify/caller_view.h"
#include "widgets/controls.h"

namespace orven {

/// A clickable picture or text that never takes the focus; with both it is framed like a button.
class CommandTile : public QFrame {
  Q_OBJECT

 public:
  /// Object names of the label and the picture, null for none; `icon` is a Freedesktop icon name.
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

/// The caller view's window: on top of all windows, centred at the upper edge of the screen that shows the
/// main window, and never with the focus. The engine decides; each control's object name is its member name.
/// User-interface thread.
class frmMSG : public QWidget, public CallerViewWindow {
  Q_OBJECT

 public:
  /// `main_window` determines the screen and outlives this window. It is not the parent, because this window
  /// would be hidden with it.
  explicit frmMSG(const QWidget& main_window);

  /// Receives the clicks; may be null.
  void SetClicks(CallerViewClicks* clicks) { clicks_ = clicks; }

  // CallerViewWindow
  std::int32_t Height() const noexcept override;
  void MoveTo(std::int32_t top) noexcept override;
  void Load() noexcept override;
  void Unload() noexcept override;
  void ShowCommands(CallerCommands shown) noexcept override;
  void ShowStatus(const Words& text) noexcept override;
  void ShowRing(const Words& text) noexcept override;
  void ShowCall(const Call& call) noexcept override;

 protected:
  void closeEvent(QCloseEvent* event) override;
  bool event(QEvent* event) override;
  void paintEvent(QPaintEvent* event) override;

 private:
  QWidget* MakeHeading();
  QWidget* MakeDetails();
  QWidget* MakeCommands();
  void AddCommand(QLayout& row, const CommandTile::Look& look, void (CallerViewClicks::*click)());
  static ElidedLabel* MakeDetail(const char* name, const QFont& font, Qt::TextElideMode mode,
                                 QWidget& parent);
  void Tell(void (CallerViewClicks::*click)());
  void Place();
  void KeepOnTop();

  const QWidget& main_window_;
  CallerViewClicks* clicks_ = nullptr;
  QPointer<QScreen> screen_;
  std::int32_t top_ = 0;  ///< twips
  QLabel* status_ = nullptr;
  QLabel* ring_ = nullptr;
  ElidedLabel* caller_ = nullptr;
  ElidedLabel* number_ = nullptr;
  QLabel* date_ = nullptr;
  QLabel* time_ = nullptr;
  ElidedLabel* message_ = nullptr;
  QList<CommandTile*> commands_;
};

}  // namespace orven
