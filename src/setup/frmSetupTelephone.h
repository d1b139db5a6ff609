// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QButtonGroup>
#include <QFormLayout>
#include <QLabel>
#include <QLineEdit>
#include <QWidget>

#include "setup/setup_assistant.h"

namespace orven {

/// The set-up assistant's page about the telephone line: its kind, and the three fields of an account.
/// User-interface thread.
class frmSetupTelephone : public QWidget {
  Q_OBJECT

 public:
  explicit frmSetupTelephone(QWidget* parent);

  /// As SetupView has them.
  void Show(TelephoneKind kind, const TelephoneLine& line, const Words& note);
  TelephoneLine Typed(TelephoneLine line) const;

 signals:
  void Chosen(TelephoneKind kind);
  void Edited();
  void MoreWanted();

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  void AddKind(TelephoneKind kind, const char* name, const QString& text);
  void AddAccount();
  void GoToFirstEmpty();

  QButtonGroup* kinds_;
  QWidget* account_;
  QLineEdit* txtServer_;
  QLineEdit* txtUser_;
  QLineEdit* txtPassword_;
  QLabel* lblAbout_;
  QLabel* lblNote_;
};

}  // namespace orven
