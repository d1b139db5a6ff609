// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QCheckBox>
#include <QComboBox>
#include <QDialog>
#include <QFormLayout>
#include <QLabel>
#include <QLineEdit>
#include <QTabWidget>

#include "actions/actions_dialog.h"

namespace orven {

/// The actions dialog: the mail and the program that follow a call. The engine decides; each control's object
/// name is its member name. User-interface thread.
class frmActions : public QDialog {
  Q_OBJECT

 public:
  /// Opens on the tab with this 0-based index: E-Mail, Application.
  frmActions(ActionsDialog& engine, int tab, QWidget* parent);

 private:
  QWidget* MakeMail();
  QWidget* MakeApplication();
  QLineEdit* AddText(QFormLayout& form, const char* name, const QString& label);
  QComboBox* AddList(QFormLayout& form, const char* name);
  void Test();
  void Ok();
  void Show(const ActionChoices& choices);
  ActionChoices Choices() const;
  void GoTo(ActionField field);

  ActionsDialog& engine_;
  QTabWidget* TabStrip1_;
  QCheckBox* chkSendToMail_ = nullptr;
  QLineEdit* txtSendToMail_ = nullptr;
  QLineEdit* txtSMTP_ = nullptr;
  QLineEdit* txtFromMail_ = nullptr;
  QLineEdit* txtSMTPUser_ = nullptr;
  QLineEdit* txtSMTPPass_ = nullptr;
  QCheckBox* chkSMTPSecure_ = nullptr;
  QComboBox* cmbActMail_ = nullptr;
  QCheckBox* chkApp_ = nullptr;
  QLineEdit* txtAppTo_ = nullptr;
  QCheckBox* chkBGAPP_ = nullptr;
  QComboBox* cmbActApp_ = nullptr;
  QLabel* test_result_ = nullptr;
};

}  // namespace orven
