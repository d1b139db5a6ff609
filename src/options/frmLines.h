// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QDialog>
#include <QPushButton>
#include <QTimer>
#include <QTreeWidget>
#include <QWidget>
#include <functional>
#include <optional>

#include "options/lines_dialog.h"
#include "widgets/growing_page.h"

namespace orven {

/// A button that tests a telephone line, with the result next to it. While a test runs, the button stops it.
/// User-interface thread.
class frmLineTest : public QWidget {
  Q_OBJECT

 public:
  /// `line` returns the line to test. It returns nothing when there is none, and may tell the user why.
  frmLineTest(LinesDialog& engine, std::function<std::optional<TelephoneLine>()> line, QWidget* parent);
  ~frmLineTest() override;

  /// Stops a running test and clears the result, because the line has changed.
  void Clear();

  /// Off in a window where Enter does something else: the button must not look like the default button.
  void SetAutoDefault(bool on) { cmdTest_->setAutoDefault(on); }

  void SetUsable(bool usable) { cmdTest_->setEnabled(usable || running_); }

 signals:
  void Tested(const LineTestResult& result);

 private:
  void Click();
  void Show(const QString& text, std::optional<bool> passed);
  void SetRunning(bool running);

  LinesDialog& engine_;
  std::function<std::optional<TelephoneLine>()> line_;
  QPushButton* cmdTest_;
  QLabel* icon_;
  WholeText* lblTestResult_;
  bool running_ = false;
};

/// The telephone lines with their current states, and buttons to add, edit, remove and test them. Modal to
/// its parent only. User-interface thread.
class frmLines : public QDialog {
  Q_OBJECT

 public:
  frmLines(LinesDialog& engine, QWidget* parent);

 protected:
  void keyPressEvent(QKeyEvent* event) override;

 private:
  QWidget* MakeComplaints();
  QWidget* MakeListRow();
  QLayout* MakeButtons();
  QPushButton* Button(const char* name, const QString& caption, const QString& tip, QWidget* parent);
  /// Updates the list; unchanged rows and the selection stay.
  void ShowRows();
  void Select(std::size_t index);
  std::optional<std::size_t> Selected() const;
  void SelectionChanged();
  void Edit(std::optional<std::size_t> index);
  void Remove();
  void Ok();

  LinesDialog& engine_;
  QTreeWidget* lvwLines_ = nullptr;
  QPushButton* cmdEdit_ = nullptr;
  QPushButton* cmdRemove_ = nullptr;
  frmLineTest* test_ = nullptr;
  QTimer refresh_;
};

}  // namespace orven
