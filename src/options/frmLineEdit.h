// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QComboBox>
#include <QDialog>
#include <QFormLayout>
#include <QLabel>
#include <QLineEdit>
#include <QSpinBox>
#include <utility>
#include <vector>

#include "options/frmLines.h"
#include "options/lines_dialog.h"

namespace orven {

/// Edits a telephone line, new or existing. Bad input is explained below its field. User-interface thread.
class frmLineEdit : public QDialog {
  Q_OBJECT

 public:
  /// Without `index` the line is a new one.
  frmLineEdit(LinesDialog& engine, std::optional<std::size_t> index, QWidget* parent);

 private:
  void MakeFields(bool fresh);
  void MakeSection(LineKind kind, void (frmLineEdit::*make)());
  void MakeSipFields();
  void MakePassword();
  void MakeModemFields();
  void MakeSimFields();
  void MakeFault();
  QWidget* MakeRow();
  QLineEdit* AddText(std::string TelephoneLine::*value, const char* name, const QString& label,
                     const QString& tip, QWidget* row = nullptr);
  QComboBox* AddList(const char* name, const QString& label, QWidget* row = nullptr);
  void AddHint(const QString& text);
  void AddRow(const QString& label, QWidget* field, QWidget* row = nullptr);
  void Show(const TelephoneLine& line);
  void ShowKind();
  void FillPorts();
  void Changed();
  TelephoneLine Line() const;
  LineKind Kind() const;
  std::optional<TelephoneLine> CheckedLine();
  void ShowFault(const LineFault& fault);
  void Ok();

  LinesDialog& engine_;
  const std::optional<std::size_t> index_;
  TelephoneLine line_;  ///< as it was when the dialog opened
  QFormLayout* form_ = nullptr;
  std::vector<std::pair<LineKind, QWidget*>> rows_;  ///< those of only one kind of line
  std::vector<std::pair<QLineEdit*, std::string TelephoneLine::*>> texts_;
  QComboBox* cmbKind_ = nullptr;
  QComboBox* cmbTransport_ = nullptr;
  QSpinBox* spnRing_ = nullptr;
  QComboBox* cmbPort_ = nullptr;
  QLabel* lblFault_ = nullptr;
  frmLineTest* test_ = nullptr;
};

}  // namespace orven
