// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QDialog>
#include <QPushButton>
#include <QTimer>
#include <QTreeWidget>

#include "options/frmLineTest.h"
#include "options/lines_dialog.h"

namespace orven {

/// The telephone lines: a list with the state of each, as it is now, and what can be done with them.
/// Modal to its parent only. User-interface thread.
class frmLines : public QDialog {
  Q_OBJECT

 public:
  frmLines(LinesDialog& engine, QWidget* parent);

 protected:
  void keyPressEvent(QKeyEvent* event) override;

 private:
  QWidget* MakeComplaints();
  QWidget* MakeListRow();
  QWidget* MakeButtons();
  QPushButton* Button(const char* name, const QString& caption, const QString& tip, QWidget* parent);
  /// Brings the list up to date; what did not change stays as it is, selection and all.
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
