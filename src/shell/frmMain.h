// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QMainWindow>

#include "shell/frmMainBars.h"
#include "shell/frmMainCallList.h"
#include "shell/frmMainMenus.h"
#include "shell/frmMainPlayer.h"
#include "shell/main_window.h"
#include "shell/main_window_view.h"
#include "widgets/button_bar.h"

namespace orven {

/// The main window. It shows what the engine tells it and passes on the user's input; it decides nothing.
/// Each control's object name is its member name ("Toolbar1", "ListView1"); toolbar buttons are named
/// "<toolbar>.<key>". User-interface thread.
class frmMain : public QMainWindow, public LineView, public MailView, public WindowFrame {
  Q_OBJECT

 public:
  frmMain();

  /// Connects the controls to the engine; called once. The engine is created after the window, which is its
  /// view, and must outlive every use of the window.
  void Attach(MainWindow& engine);

  /// The menu `mnuSystry`.
  QMenu& TrayMenu() { return menus_->Systry(); }

  /// This window and its parts as the engine's views, with `caller_view` for the other window.
  MainWindowViews Views(CallerViewWindow& caller_view);

  // LineView
  void ShowStatus(const Words& text) override;
  void ShowLine(bool on, bool trying) override;
  void OfferChosen(const std::string& name, bool waits) override;

  // MailView
  void ShowMail(const Words& text) noexcept override;

  // WindowFrame
  WindowGeometry Geometry() const override;
  void Place(const WindowGeometry& geometry) override;
  std::uint32_t ToolbarStyle(Toolbar toolbar) const noexcept override;
  void SetToolbarStyle(Toolbar toolbar, std::uint32_t style) noexcept override;
  void ShowQuickToolbar(bool on) noexcept override;
  void ShowSetupOffers(const SetupOffers& offers) noexcept override;
  bool GridLines() const noexcept override;
  void SetGridLines(bool on) noexcept override;
  void SetListStyle(std::uint32_t mask, std::uint32_t style) noexcept override;
  std::uintptr_t Handle() const noexcept override;
  bool InFront() const noexcept override { return isActiveWindow() && !isMinimized(); }
  void Show() noexcept override;
  void Hide() noexcept override;
  void Minimise() noexcept override;
  void Restore() noexcept override;
  void PopUpTrayMenu() noexcept override;
  void CloseOtherWindows() noexcept override;
  void ShowClock(const std::string& time, const std::string& date) noexcept override;

 protected:
  void closeEvent(QCloseEvent* event) override;
  void changeEvent(QEvent* event) override;
  void showEvent(QShowEvent* event) override;
  void hideEvent(QHideEvent* event) override;
  QMenu* createPopupMenu() override { return nullptr; }

 private:
  void TellSight();
  void AddToolbar1();
  void LayOut();
  void SetTabOrder();
  void AttachToolbars();
  void AttachList();
  void OfferListCommands();
  void AttachPlayer();
  void AttachQuickOptions();
  ButtonBar& Bar(Toolbar toolbar) const;

  ButtonBar* Toolbar1_;
  QuickOptionBar* TBQuickOption_;
  CallListWidget* ListView1_;
  PlayerPanel* player_;
  MainStatusBar* StatusBar1_;
  MainMenus* menus_;
  MainWindow* engine_ = nullptr;
  bool line_on_ = false;
  bool minimised_ = false;  ///< only the user restores it
};

}  // namespace orven
