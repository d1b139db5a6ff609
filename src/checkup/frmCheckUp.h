// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QDialog>
#include <QLabel>
#include <QListWidget>
#include <QPushButton>

#include "checkup/check_up.h"
#include "checkup/own_call.h"

namespace orven {

/// Tools, Check-up: one row for each link of the chain from a call to its message, and a call of the machine
/// to itself. User-interface thread.
class frmCheckUp : public QDialog {
  Q_OBJECT

 public:
  frmCheckUp(CheckUp::Parts check_up, OwnCall::Parts own_call, QWidget* parent);

 private:
  QListWidget* MakeList(const char* name, const QString& spoken, std::size_t rows);
  void ShowLinks();
  void ShowCall();

  QListWidget* lstLinks_;
  QLabel* lblResult_;
  QPushButton* cmdCall_;
  QLabel* lblCall_;
  QListWidget* lstSteps_;
  QPushButton* cmdAgain_;
  CheckUp check_up_;
  OwnCall own_call_;
};

}  // namespace orven
