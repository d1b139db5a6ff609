// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QComboBox>
#include <QDialog>
#include <QFormLayout>
#include <QLabel>
#include <QLineEdit>
#include <QSpinBox>
#include <QToolButton>
#include <optional>
#include <vector>

#include "options/frmLines.h"
#include "options/lines_dialog.h"
#include "widgets/growing_page.h"

namespace orven {

/// Edits a telephone line, new or existing. Bad input is explained below its field. What few lines need is
/// below the button `cmdMore`, which is open from the beginning when one of these values is unusual.
/// User-interface thread.
class frmLineEdit : public QDialog {
  Q_OBJECT

 public:
  /// Without `index` the line is a new one.
  frmLineEdit(LinesDialog& engine, std::optional<std::size_t> index, QWidget* parent);

 private:
  /// A text, and where the line has it.
  struct Text {
    QLineEdit* field;
    std::string TelephoneLine::*value;
    std::optional<LineKind> kind;  ///< that has it; nothing: every kind
  };
  /// A row of the form that only one kind of line has.
  struct Row {
    LineKind kind;
    bool expert;  ///< below cmdMore
    QWidget* widget;
  };

  void MakeFields(bool fresh);
  void MakeSection(LineKind kind, bool expert, void (frmLineEdit::*make)());
  void MakeSipFields();
  void MakeMore();
  void MakeExpertFields();
  void MakeAddressForCalls();
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
  void ShowRows();
  void FillPorts();
  void Changed();
  TelephoneLine Line() const;
  LineKind Kind() const;
  std::optional<TelephoneLine> CheckedLine();
  QWidget* PlaceOf(QWidget* control) const;
  QWidget* Named(std::string_view control) const;
  void ShowFault(const LineFault& fault);
  void ShowTested(const LineTestResult& result);
  void Ok();

  LinesDialog& engine_;
  const std::optional<std::size_t> index_;
  TelephoneLine line_;  ///< as it was when the dialog opened
  GrowingPage* page_ = nullptr;
  QFormLayout* form_ = nullptr;
  std::optional<LineKind> section_;  ///< that is being made
  std::vector<Row> rows_;
  std::vector<Text> texts_;
  QComboBox* cmbKind_ = nullptr;
  QToolButton* cmdMore_ = nullptr;
  QComboBox* cmbTransport_ = nullptr;
  QSpinBox* spnRing_ = nullptr;
  QComboBox* cmbPort_ = nullptr;
  WholeText* lblFault_ = nullptr;
  frmLineTest* test_ = nullptr;
};

}  // namespace orven
