// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QLabel>
#include <QWidget>

#include "greetings/greeting_creator.h"

namespace orven {

/// The set-up assistant's page about the greeting. User-interface thread.
class frmSetupGreeting : public QWidget {
  Q_OBJECT

 public:
  explicit frmSetupGreeting(QWidget* parent);

  /// The name of the greeting that callers hear.
  void Show(const std::string& name);

 signals:
  void PlayWanted();
  void MakeWanted(CreatorTab tab);

 private:
  QLabel* lblGreeting_;
};

}  // namespace orven
