// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QComboBox>
#include <QDialog>
#include <QLabel>
#include <QListWidget>
#include <QPushButton>

#include "log/frmLogLines.h"
#include "log/log_viewer.h"
#include "widgets/settings_form.h"

namespace orven {

/// The log viewer. The engine decides; each control's object name is its member name. It may be closed from
/// outside. User-interface thread.
class frmLog : public QDialog, private LogViewerWindow {
  Q_OBJECT

 public:
  /// `open_properties` opens the log properties above the window that it gets.
  frmLog(LogViewer::Parts parts, std::function<void(LogViewer&, QWidget&)> open_properties, QWidget* parent);

 private:
  void ShowFiles(const std::vector<std::string>& names, const std::string& selected) noexcept override;
  void ShowLineCount(std::size_t count) noexcept override;
  std::int32_t Widest(std::string_view line, std::int32_t widest) noexcept override;
  void ShowExtent(std::int32_t pixels) noexcept override;
  void ShowState(const Words& text) noexcept override;

  QWidget* MakeFiles();
  QWidget* MakeDetails();
  QWidget* MakeButtons();
  void Connect();
  void SelectCurrent();
  void EnableButtons();

  LogViewer engine_;
  TextWidths widths_;
  std::function<void(LogViewer&, QWidget&)> open_properties_;
  QComboBox* cmbWhatToShow_ = nullptr;
  QListWidget* List1_ = nullptr;
  LogLineList* List2_ = nullptr;
  LogLineModel* lines_ = nullptr;
  QLabel* lblState_ = nullptr;
  QPushButton* cmdDelete_ = nullptr;
  QPushButton* cmdSaveAs_ = nullptr;
  QPushButton* cmdProp_ = nullptr;
};

/// The log properties. The engine decides; the controls are made of the settings' rows. User-interface thread.
class frmLogProp : public QDialog {
  Q_OBJECT

 public:
  frmLogProp(LogProperties& engine, QWidget* parent);

 private:
  LogProperties& engine_;
  SettingsForm form_;
};

}  // namespace orven
