// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QComboBox>
#include <QWidget>
#include <string>

#include "options/greeting_player.h"
#include "widgets/button_bar.h"

namespace orven {

/// The greeting player of the options dialog: the list `CmbGreetsMessages` and the toolbar
/// `tlbrGreetingPlayer`. User-interface thread.
class frmOptionsGreetings : public QWidget {
  Q_OBJECT

 public:
  /// The list is empty at first.
  frmOptionsGreetings(GreetingPlayer& engine, QWidget* parent);

  /// Shows the library as it is now; `selected` is selected when it is there, else the first greeting is.
  void Fill(const std::string& selected);

  /// The greeting that is selected; empty when there is none.
  std::string Selected() const;

 private:
  void Press(const QString& key);
  void Show(const GreetingList& list);
  GreetingList List() const;

  GreetingPlayer& engine_;
  QComboBox* CmbGreetsMessages_;
  ButtonBar* tlbrGreetingPlayer_;
};

}  // namespace orven
