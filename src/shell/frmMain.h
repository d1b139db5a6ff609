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
class frmMain : public QMainWindow, public WholeMainWindow {
  Q_OBJECT

 public:
  frmMain();

  /// Connects the controls to the engine; called once. The engine is created after the window, which is its
  /// view, and must outlive every use of the window.
  void Attach(MainWindow& engine);

  /// The menu `mnuSystry`.
  QMenu& TrayMenu() { return menus_->Systry(); }

  /// This window as each of the engine's views, except the caller view.
  MainWindowViews Views(CallerViewWindow& caller_view);

  // LineView
  void ShowStatus(const std::string& text) override;
  void ShowLine(bool on, bool trying) override;

  // QuickOptionBoxes
  void FillRings(const std::vector<std::string>& texts) noexcept override;
  void ShowRings(std::int16_t count) noexcept override;
  void FillGreetings(const std::vector<std::string>& names, const std::string& selected) noexcept override;
  std::string SelectedGreeting() const noexcept override;
  void ShowRecordMessage(bool on) noexcept override;

  // WindowFrame
  WindowGeometry Geometry() const override;
  void Place(const WindowGeometry& geometry) override;
  std::uint32_t ToolbarStyle(Toolbar toolbar) const noexcept override;
  void SetToolbarStyle(Toolbar toolbar, std::uint32_t style) noexcept override;
  void ShowQuickToolbar(bool on) noexcept override;
  bool GridLines() const noexcept override;
  void SetGridLines(bool on) noexcept override;
  void SetListStyle(std::uint32_t mask, std::uint32_t style) noexcept override;
  std::uintptr_t Handle() const noexcept override;
  void Show() noexcept override;
  void Hide() noexcept override;
  void Minimise() noexcept override;
  void Restore() noexcept override;
  void PopUpTrayMenu() noexcept override;
  void CloseOtherWindows() noexcept override;

  // CallListView
  void ShowColumns(const std::vector<CallColumn>& columns) override;
  void ShowRowCount(std::int32_t count) override;
  void ShowRowsInserted(std::int32_t count) override;
  void ShowRowRemoved(std::int32_t index) override;
  void ShowRowsChanged() override;
  void ShowIcon(std::int32_t index, CallIcon icon) override;
  CallRow ShownCall(std::int32_t index) const override;
  void ShowSelection(std::int32_t index) override;
  void EnsureVisible(std::int32_t index) override;
  void PopUpMenu(bool message) override;

  // PlayerView
  void SetSliderRange(std::int32_t first, std::int32_t last) override;
  void EnableSlider(bool on) override;
  void ShowSlider(std::int32_t value) override;
  void ShowWaveform(const Waveform& waveform) override;
  void ShowProgress(std::chrono::milliseconds position, std::chrono::milliseconds length) override;

  // ClockPanels
  void ShowClock(const std::string& time, const std::string& date) noexcept override;

 protected:
  void closeEvent(QCloseEvent* event) override;
  void changeEvent(QEvent* event) override;
  QMenu* createPopupMenu() override { return nullptr; }

 private:
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
