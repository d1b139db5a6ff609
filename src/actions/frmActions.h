// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QDialog>
#include <QFormLayout>
#include <QLabel>
#include <QPushButton>
#include <QTabWidget>

#include "actions/actions_dialog.h"
#include "widgets/settings_form.h"

namespace orven {

/// The actions dialog: the mail and the program that follow a call. The engine decides; the controls are made
/// of the settings' rows. User-interface thread.
class frmActions : public QDialog {
  Q_OBJECT

 public:
  /// Opens on the tab with this 0-based index: E-Mail, Application.
  frmActions(ActionsDialog& engine, int tab, QWidget* parent);

 private:
  QWidget* MakeMail();
  QWidget* MakeApplication();
  void AddMailTest(QFormLayout& form, QWidget* page);
  void TestMail();
  void Test();
  void Ok();
  void Show(const Choices& choices);

  ActionsDialog& engine_;
  SettingsForm form_;
  QTabWidget* TabStrip1_;
  QPushButton* cmdTestMail_ = nullptr;
  QLabel* mail_result_ = nullptr;
  QLabel* test_result_ = nullptr;
};

}  // namespace orven
