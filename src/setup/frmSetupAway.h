// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QFormLayout>
#include <QLabel>
#include <QPushButton>
#include <QWidget>

#include "core/settings.h"
#include "widgets/settings_form.h"

namespace orven {

/// The set-up assistant's page about hearing the messages elsewhere, made of the settings' rows.
/// User-interface thread.
class frmSetupAway : public QWidget {
  Q_OBJECT

 public:
  explicit frmSetupAway(QWidget* parent);

  /// As SetupView has them.
  void Show(const Choices& choices);
  Choices Taken() const { return form_.Taken(); }
  QWidget* FirstControl() const { return &form_.Get("Pass"); }
  /// A box has said what is wrong, perhaps of a value that only the actions dialog shows.
  void ShowWrong(const SettingRow& row) {
    if (Taken().contains(row.name)) form_.Get(row.name).setFocus();
  }

 signals:
  void TestWanted();

 private:
  void AddMailTest();
  void ShowMail(bool on);

  SettingsForm form_;
  QFormLayout* fields_;
  QPushButton* cmdTestMail_ = nullptr;
};

}  // namespace orven
