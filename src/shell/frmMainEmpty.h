// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QPushButton>
#include <QWidget>

#include "setup/setup_steps.h"

namespace orven {

/// What the call list shows while it is empty: a text, and links to the pages of the set-up assistant that
/// are still to be done. User-interface thread.
class EmptyCallList : public QWidget {
  Q_OBJECT

 public:
  explicit EmptyCallList(QWidget* parent);

  void Show(const SetupOffers& offers);

 protected:
  void changeEvent(QEvent* event) override;

 signals:
  void SetupWanted(SetupPage page);

 private:
  QPushButton* AddLink(const char* name, const QString& text, SetupPage page);

  void SetColours();

  QPushButton* lnkTelephone_;
  QPushButton* lnkGreeting_;
  QPushButton* lnkPassword_;
};

}  // namespace orven
