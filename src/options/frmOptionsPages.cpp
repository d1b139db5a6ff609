// SPDX-License-Identifier: GPL-3.0-or-later
//
// The layout of the options dialog's pages.
#include <QFormLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QVBoxLayout>

#include "options/frmOptions.h"
#include "widgets/controls.h"
#include "widgets/dialog_parts.h"
#include "widgets/password_field.h"
#include "widgets/translation.h"

namespace orven {
void frmOptions::AddPage(const char* name, const QString& title, void (frmOptions::*fill)(QFormLayout&)) {
  auto* page = MakeNamed<QWidget>(name, TabStrip1_);
  auto* form = MakeChild<QFormLayout>();
  (this->*fill)(*form);
  auto* column = MakeChild<QVBoxLayout>(page);
  column->addLayout(form);
  column->addStretch();
  TabStrip1_->addTab(page, title);
}

void frmOptions::FillGeneral(QFormLayout& form) {
  chkRenOnStart_ = MakeNamed<QCheckBox>("chkRenOnStart", tr("Start ORVEN when I log in"), this);
  chkRenOnStart_->setToolTip(tr("It then answers from the notification area, without its window"));
  form.addRow(chkRenOnStart_);
  for (const char* name : {"pQuickToolbar", "ListMessageOnly"}) form_.Add(form, name);
  form_.AddRest(form, 0);
  form.addRow(MakeMessagesFolder());
}

QWidget* frmOptions::MakeMessagesFolder() {
  auto* frame = MakeChild<QGroupBox>(tr("Save Messages To"), this);
  txtMassagesPath_ = MakeNamed<QLineEdit>("txtMassagesPath", frame);
  txtMassagesPath_->setAccessibleName(tr("Folder of the messages"));
  txtMassagesPath_->setReadOnly(true);
  cmdBrowsMessagesPath_ =
      MakeButton("cmdBrowsMessagesPath", tr("&Browse…"),
                 tr("Choose another folder. The messages are moved there at once"), frame);
  moving_ = MakeText("lblMoving", frame);
  auto* row = MakeChild<QHBoxLayout>();
  row->addWidget(txtMassagesPath_, 1);
  row->addWidget(cmdBrowsMessagesPath_);
  auto* column = MakeChild<QVBoxLayout>(frame);
  column->addLayout(row);
  column->addWidget(moving_);
  return frame;
}

void frmOptions::FillDevices(QFormLayout& form) {
  auto* row = MakeChild<QHBoxLayout>();
  row->addWidget(form_.Make("ModemName"), 1);
  cmbModemDev_ = &form_.Get<QComboBox>("ModemName");
  auto* lines =
      MakeButton("cmdLines", tr("&Lines…"), tr("Add, change, test and remove telephone lines"), this);
  lines->setEnabled(bool(parts_.open_lines));
  connect(lines, &QPushButton::clicked, this, &frmOptions::OpenLines);
  row->addWidget(lines);
  form.addRow(MakeCaption(tr("&Modem device:"), cmbModemDev_), row);
  form.addRow(MakeCapabilities());
  form_.AddRest(form, 1);
}

QWidget* frmOptions::MakeCapabilities() {
  auto* frame = MakeNamed<QGroupBox>("fraCapability", tr("Tapi Capability: "), this);
  auto* form = MakeChild<QFormLayout>(frame);
  const char* const names[] = {"lblDeviceName",     "lblMaxRate",  "lblCallerID",         "lblMonitorDigits",
                               "lblGenerateDigits", "lblDataMode", "lblInteractivevoice", "lblAutoVoice"};
  const auto labels = parts_.engine.Capabilities({});
  for (std::size_t i = 0; i < std::min(labels.size(), std::size(names)); ++i) {
    auto* value = MakeText(names[i], frame);
    form->addRow(Shown(labels[i].first), value);
    capabilities_.push_back(value);
  }
  no_device_ = MakeText("lblNoDevice", frame);
  form->addRow(no_device_);
  return frame;
}

void frmOptions::FillAnswerMode(QFormLayout& form) {
  form_.Add(form, "NumOfRing");
  greetings_ = MakeChild<frmOptionsGreetings>(parts_.greetings, this);
  form.addRow(greetings_);
  form_.AddRest(form, 2);
  setTabOrder(&form_.Get("NumOfRing"), &form_.Get("MaxRec"));  // one number after the other
}

void frmOptions::FillAdvanced(QFormLayout& form) {
  auto* compress = form_.Make("CompressMessages");
  form.addRow(MakeSilence());
  form.addRow(MakeRemoteAccess());
  form.addRow(compress);
  form_.AddRest(form, 3);
}

QWidget* frmOptions::MakeSilence() {
  auto* frame = MakeChild<QGroupBox>(tr("Silence"), this);
  auto* row = MakeChild<QHBoxLayout>();
  row->addWidget(form_.Make("cDropSilence"));
  row->addWidget(form_.Make("SecSilence"), 1);
  auto* column = MakeChild<QVBoxLayout>(frame);
  column->addLayout(row);
  column->addWidget(MakeSilenceLevel());
  return frame;
}

QWidget* frmOptions::MakeSilenceLevel() {
  auto* page = MakeChild<QWidget>(this);
  form_.Make("ValSilence");
  sldSilence_ = &form_.Get<QSlider>("ValSilence");
  silence_ = MakeNamed<QLabel>("lblSilence", page);
  silence_->setMinimumWidth(silence_->fontMetrics().horizontalAdvance(QStringLiteral("100 %")));
  silence_->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
  meter_ = MakeNamed<SilenceMeter>("prgSilence", *sldSilence_, page);
  meter_text_ = MakeText("lblLevel", page);
  auto* grid = MakeFlat<QGridLayout>(page);
  grid->addWidget(MakeCaption(tr("Sil&ence is up to:"), sldSilence_), 0, 0);
  grid->addWidget(sldSilence_, 0, 1);
  grid->addWidget(silence_, 0, 2);
  grid->addWidget(meter_, 1, 1);
  grid->addWidget(meter_text_, 2, 1, 1, 2);
  grid->setColumnStretch(1, 1);
  return page;
}

QWidget* frmOptions::MakeRemoteAccess() {
  auto* frame = MakeChild<QGroupBox>(tr("Remote access"), this);
  auto* form = MakeChild<QFormLayout>(frame);
  for (const char* name : {"AllowRemoteAccess", "Pass"}) form_.Add(*form, name);
  auto& password = form_.Get<QLineEdit>("Pass");
  HidePassword(password);
  form->addRow(QString(), MakePasswordHint(password, frame));
  return frame;
}

}  // namespace orven
