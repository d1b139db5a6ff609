// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QCheckBox>
#include <QLabel>
#include <QStatusBar>

namespace orven {

/// The status bar `StatusBar1`: what the line is doing, `Check1`, the time and the date.
class MainStatusBar : public QStatusBar {
  Q_OBJECT

 public:
  explicit MainStatusBar(QWidget* parent);

  void ShowStatus(const QString& text);
  void ShowClock(const QString& time, const QString& date);

  QCheckBox& Check1() { return *check_; }

 private:
  QLabel* AddPanel(int number);

  QLabel* status_;
  QCheckBox* check_;
  QLabel* time_;
  QLabel* date_;
};

}  // namespace orven
