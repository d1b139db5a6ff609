// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QPushButton>
#include <QStatusBar>
#include <QToolButton>
#include <cstdint>
#include <string>
#include <vector>

#include "shell/main_window_view.h"
#include "widgets/button_bar.h"

namespace orven {

/// The quick-option toolbar `TBQuickOption`: the greeting with its buttons, the number of rings, and whether
/// messages are recorded. Only the user's choices emit its signals.
class QuickOptionBar : public ButtonBar, public QuickOptionBoxes {
  Q_OBJECT

 public:
  explicit QuickOptionBar(QWidget* parent);

  void ShowRings(std::int16_t count) noexcept override;
  void FillGreetings(const std::vector<std::string>& names, const std::string& selected) noexcept override;
  std::string SelectedGreeting() const noexcept override { return greetings_->currentText().toStdString(); }
  void ShowRecordMessage(bool on) noexcept override { record_->setChecked(on); }

 signals:
  void GreetingChosen(const QString& name);
  void RingsChosen(const QString& text);
  void RecordMessageChosen(bool on);

 private:
  void AddGreetings();
  void AddRings();
  QComboBox* AddBox(const char* name, const QString& label, const QString& purpose);

  QComboBox* greetings_ = nullptr;
  QComboBox* rings_ = nullptr;
  QCheckBox* record_ = nullptr;
};

/// The status bar `StatusBar1`: the line's status, the offer to use another line, mails that are not sent (if
/// any), `Check1`, the time and the date.
class MainStatusBar : public QStatusBar {
  Q_OBJECT

 public:
  explicit MainStatusBar(QWidget* parent);

  void ShowStatus(const QString& text);
  /// As LineView::OfferChosen.
  void OfferLine(const QString& name, bool waits);
  void ShowClock(const QString& time, const QString& date);
  /// Shortened on the bar, in full in the tip; an empty text hides it.
  void ShowMail(const QString& text);

  QPushButton& UseLine() { return *cmdUseLine_; }
  QToolButton& Mail() { return *mail_; }
  QCheckBox& Check1() { return *check_; }

 private:
  QLabel* AddPanel(int number);

  void AddOffer();

  QLabel* status_;
  QLabel* offer_ = nullptr;
  QPushButton* cmdUseLine_ = nullptr;
  QToolButton* mail_;
  QCheckBox* check_;
  QLabel* time_;
  QLabel* date_;
};

}  // namespace orven
