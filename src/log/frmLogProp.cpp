// SPDX-License-Identifier: GPL-3.0-or-later
#include "log/frmLogProp.h"

#include <QFormLayout>
#include <QHBoxLayout>
#include <QPushButton>
#include <QVBoxLayout>

#include "shell/frmMainIcons.h"
#include "shell/frmMakeChild.h"
#include "shell/frmStrayWheel.h"

namespace orven {
namespace {

QString Name(const char* name) {
  return QString::fromLatin1(name);
}

QPushButton* Button(const char* name, const QString& caption, QWidget* parent) {
  auto* button = MakeChild<QPushButton>(caption, parent);
  button->setObjectName(Name(name));
  return button;
}

}  // namespace

frmLogProp::frmLogProp(LogProperties& engine, QWidget* parent)
    : QDialog(parent),
      engine_(engine),
      chkLogCalls_(MakeCheck("chkLogCalls", tr("Log Calls"))),
      chkLogSys_(MakeCheck("chkLogSys", tr("Log System"))),
      cmbLogFor_(MakeChild<QComboBox>(this)),
      chkWornBeforeDelete_(MakeCheck("chkWornBeforeDelete", tr("Worn before delete"))) {
  setObjectName(Name("frmLogProp"));
  setWindowTitle(tr("Log Properties"));
  setWindowIcon(ProgramIcon());
  setWindowModality(Qt::WindowModal);
  cmbLogFor_->setObjectName(Name("cmbLogFor"));
  for (const char* choice : kLogForChoices) cmbLogFor_->addItem(tr(choice), Name(choice));
  IgnoreStrayWheel(*cmbLogFor_);
  chkLogCalls_->setToolTip(tr("Write a line for each call"));
  chkLogSys_->setToolTip(tr("Write each step of the line, and what failed"));
  cmbLogFor_->setToolTip(tr("Files in the log folder that are older are deleted"));
  chkWornBeforeDelete_->setToolTip(tr("Ask before the log viewer deletes a log"));
  // The caption and its window buttons are wider than what is below.
  setMinimumWidth(fontMetrics().horizontalAdvance(windowTitle()) * 3);
  auto* form = MakeChild<QFormLayout>();
  form->addRow(chkLogCalls_);
  form->addRow(chkLogSys_);
  form->addRow(tr("Log For:"), cmbLogFor_);
  form->addRow(chkWornBeforeDelete_);
  auto* column = MakeChild<QVBoxLayout>(this);
  column->addLayout(form);
  column->addStretch();
  column->addWidget(MakeButtons());
  Show(engine_.Load());
}

QCheckBox* frmLogProp::MakeCheck(const char* name, const QString& caption) {
  auto* check = MakeChild<QCheckBox>(caption, this);
  check->setObjectName(Name(name));
  return check;
}

QWidget* frmLogProp::MakeButtons() {
  auto* row = MakeChild<QWidget>(this);
  auto* layout = MakeChild<QHBoxLayout>(row);
  layout->setContentsMargins(0, 0, 0, 0);
  auto* ok = Button("cmdOK", tr("OK"), row);
  ok->setDefault(true);
  auto* cancel = Button("cmdCancel", tr("Cancel"), row);
  layout->addStretch();
  layout->addWidget(ok);
  layout->addWidget(cancel);
  connect(ok, &QPushButton::clicked, this, &frmLogProp::Ok);
  connect(cancel, &QPushButton::clicked, this, &QDialog::reject);
  return row;
}

void frmLogProp::Show(const LogChoices& choices) {
  chkLogCalls_->setChecked(choices.chkLogCalls);
  chkLogSys_->setChecked(choices.chkLogSys);
  cmbLogFor_->setCurrentIndex(cmbLogFor_->findData(QString::fromStdString(choices.cmbLogFor)));
  chkWornBeforeDelete_->setChecked(choices.chkWornBeforeDelete);
}

void frmLogProp::Ok() {
  engine_.Ok({chkLogCalls_->isChecked(), chkLogSys_->isChecked(),
              cmbLogFor_->currentData().toString().toStdString(), chkWornBeforeDelete_->isChecked()});
  accept();
}

}  // namespace orven
