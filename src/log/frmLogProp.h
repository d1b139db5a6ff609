// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QCheckBox>
#include <QComboBox>
#include <QDialog>

#include "log/log_properties.h"

namespace orven {

/// The log properties. It shows what the engine loads and hands over what a person does; every control's
/// object name is its name in this program. User-interface thread.
class frmLogProp : public QDialog {
  Q_OBJECT

 public:
  frmLogProp(LogProperties& engine, QWidget* parent);

 private:
  QCheckBox* MakeCheck(const char* name, const QString& caption);
  QWidget* MakeButtons();
  void Show(const LogChoices& choices);
  void Ok();

  LogProperties& engine_;
  QCheckBox* chkLogCalls_;
  QCheckBox* chkLogSys_;
  QComboBox* cmbLogFor_;
  QCheckBox* chkWornBeforeDelete_;
};

}  // namespace orven
