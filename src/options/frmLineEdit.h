// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QCheckBox>
#include <QComboBox>
#include <QDialog>
#include <QFormLayout>
#include <QLabel>
#include <QLineEdit>
#include <QSpinBox>

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
  void MakeSipFields();
  void MakeModemFields();
  QLineEdit* AddText(const char* name, const QString& label, const QString& tip);
  QComboBox* AddList(const char* name, const QString& label, QWidget* row = nullptr);
  void AddRow(const QString& label, QWidget* field, QWidget* row);
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
  QLineEdit* txtName_ = nullptr;
  QComboBox* cmbKind_ = nullptr;
  QLineEdit* txtServer_ = nullptr;
  QLineEdit* txtUser_ = nullptr;
  QLineEdit* txtAuthUser_ = nullptr;
  QLineEdit* txtPassword_ = nullptr;
  QCheckBox* chkShowPassword_ = nullptr;
  QWidget* password_row_ = nullptr;
  QComboBox* cmbTransport_ = nullptr;
  QLineEdit* txtListen_ = nullptr;
  QSpinBox* spnRing_ = nullptr;
  QComboBox* cmbPort_ = nullptr;
  QWidget* port_row_ = nullptr;
  QLabel* port_hint_ = nullptr;
  QLineEdit* txtScript_ = nullptr;
  QLabel* lblFault_ = nullptr;
  frmLineTest* test_ = nullptr;
};

}  // namespace orven
