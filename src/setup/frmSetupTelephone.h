// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QAbstractButton>
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
  QAbstractButton* FirstControl() const { return kinds_->checkedButton(); }

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
  int shown_ = -1;  ///< the kind; a click on it again drops nothing
  QWidget* account_ = nullptr;  ///< after the kinds, in the order of the Tab key
  QLineEdit* txtServer_ = nullptr;
  QLineEdit* txtUser_ = nullptr;
  QLineEdit* txtPassword_ = nullptr;
  QLabel* lblAbout_;
  QLabel* lblNote_;
};

}  // namespace orven
