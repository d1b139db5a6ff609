// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QCheckBox>
#include <QComboBox>
#include <QDialog>
#include <QLabel>
#include <QListWidget>
#include <QPushButton>

#include "log/frmLogLines.h"
#include "log/log_viewer.h"

namespace orven {

/// The log viewer. It shows what the engine gives it and hands over what a person does; every control's
/// object name is its name in this program. Modal to the main window only, so that a call that comes
/// in meanwhile can be answered in the caller view; closing it from outside ends it. User-interface thread.
class frmLog : public QDialog, private LogViewerWindow {
  Q_OBJECT

 public:
  /// `open_properties` opens the log properties over the window that it is given.
  frmLog(LogViewer::Parts parts, std::function<void(LogViewer&, QWidget&)> open_properties, QWidget* parent);

 private:
  void ShowFiles(const std::vector<std::string>& names, const std::string& selected) override;
  void ShowLineCount(std::size_t count) override;
  std::int32_t Widest(std::string_view line, std::int32_t widest) override;
  void ShowExtent(std::int32_t pixels) override;
  void ShowState(const std::string& text) override;

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

/// The log properties. It shows what the engine loads and hands over what a person does; every control's
/// object name is its name in this program. User-interface thread.
class frmLogProp : public QDialog {
  Q_OBJECT

 public:
  frmLogProp(LogProperties& engine, QWidget* parent);

 private:
  void Show(const LogChoices& choices);
  void Ok();

  LogProperties& engine_;
  QCheckBox* chkLogCalls_;
  QCheckBox* chkLogSys_;
  QComboBox* cmbLogFor_;
  QCheckBox* chkWornBeforeDelete_;
};

}  // namespace orven
