// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QStatusBar>
#include <cstdint>
#include <string>
#include <vector>

#include "widgets/button_bar.h"

namespace orven {

/// The quick-option toolbar `TBQuickOption`: the greeting with its buttons, the number of rings, and whether
/// messages are recorded. Only the user's choices emit its signals.
class QuickOptionBar : public ButtonBar {
  Q_OBJECT

 public:
  explicit QuickOptionBar(QWidget* parent);

  void FillRings(const std::vector<std::string>& texts);
  void ShowRings(std::int16_t count);
  void FillGreetings(const std::vector<std::string>& names, const std::string& selected);
  QString SelectedGreeting() const { return greetings_->currentText(); }
  void ShowRecordMessage(bool on) { record_->setChecked(on); }

 signals:
  void GreetingChosen(const QString& name);
  void RingsChosen(const QString& text);
  void RecordMessageChosen(bool on);

 protected:
  bool eventFilter(QObject* box, QEvent* event) override;

 private:
  void AddGreetings();
  void AddRings();
  QComboBox* AddBox(const char* name, const QString& label, const QString& purpose);

  QComboBox* greetings_ = nullptr;
  QComboBox* rings_ = nullptr;
  QCheckBox* record_ = nullptr;
};

/// The status bar `StatusBar1`: the line's status, `Check1`, the time and the date.
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
