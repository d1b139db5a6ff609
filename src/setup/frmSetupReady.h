// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QLabel>
#include <QListWidget>
#include <QPushButton>
#include <QWidget>

#include "base/words.h"
#include "checkup/own_call.h"

namespace orven {

/// The set-up assistant's last page: how the line is, and the proof that it takes calls. User-interface
/// thread.
class frmSetupReady : public QWidget {
  Q_OBJECT

 public:
  explicit frmSetupReady(QWidget* parent);

  /// As SetupView has them.
  void ShowLine(const Words& state, const Words& dial);
  void ShowOwnCall(const OwnCall& call, const Words& obstacle);

  QPushButton* CallButton() const { return cmdCall_; }

 signals:
  void CallWanted();

 private:
  QLabel* lblLine_;
  QLabel* lblDial_;
  QPushButton* cmdCall_;
  QLabel* lblObstacle_;
  QListWidget* lstSteps_;
};

}  // namespace orven
