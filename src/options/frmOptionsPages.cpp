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
#include "widgets/icons.h"

namespace orven {
namespace {

QString Name(const char* name) {
  return QString::fromLatin1(name);
}

QLabel* MakeHint(const char* name, QWidget* page) {
  auto* hint = MakeChild<QLabel>(page);
  hint->setObjectName(Name(name));
  hint->setTextFormat(Qt::PlainText);
  hint->setWordWrap(true);
  return hint;
}

}  // namespace

void frmOptions::AddPage(const char* name, const QString& title, void (frmOptions::*fill)(QFormLayout&)) {
  auto* page = MakeChild<QWidget>(TabStrip1_);
  page->setObjectName(Name(name));
  auto* form = MakeChild<QFormLayout>();
  (this->*fill)(*form);
  auto* column = MakeChild<QVBoxLayout>(page);
  column->addLayout(form);
  column->addStretch();
  TabStrip1_->addTab(page, title);
}

void frmOptions::FillGeneral(QFormLayout& form) {
  chkRenOnStart_ = MakeCheckBox("chkRenOnStart", tr("Start ORVEN when I log in"), this);
  chkRenOnStart_->setToolTip(tr("It then answers from the notification area, without its window"));
  form.addRow(chkRenOnStart_);
  for (const char* name : {"pQuickToolbar", "ListMessageOnly"}) form_.Add(form, name);
  form_.AddRest(form, 0);
  form.addRow(MakeMessagesFolder());
}

QWidget* frmOptions::MakeMessagesFolder() {
  auto* frame = MakeChild<QGroupBox>(tr("Save Messages To"), this);
  txtMassagesPath_ = MakeChild<QLineEdit>(frame);
  txtMassagesPath_->setObjectName(Name("txtMassagesPath"));
  txtMassagesPath_->setAccessibleName(tr("Folder of the messages"));
  txtMassagesPath_->setReadOnly(true);
  cmdBrowsMessagesPath_ = MakeButton("cmdBrowsMessagesPath", tr("&Browse…"), nullptr, frame);
  cmdBrowsMessagesPath_->setToolTip(tr("Choose another folder. The messages are moved there at once"));
  moving_ = MakeHint("lblMoving", frame);
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
  auto* lines = MakeButton("cmdLines", tr("&Lines…"), nullptr, this);
  lines->setToolTip(tr("Add, change, test and remove telephone lines"));
  lines->setEnabled(bool(parts_.open_lines));
  connect(lines, &QPushButton::clicked, this, &frmOptions::OpenLines);
  row->addWidget(lines);
  auto* device = MakeChild<QLabel>(tr("&Modem device:"), this);
  device->setBuddy(cmbModemDev_);
  form.addRow(device, row);
  form.addRow(MakeCapabilities());
  form_.AddRest(form, 1);
}

QWidget* frmOptions::MakeCapabilities() {
  auto* frame = MakeChild<QGroupBox>(tr("Tapi Capability: "), this);
  frame->setObjectName(Name("fraCapability"));
  auto* form = MakeChild<QFormLayout>(frame);
  const char* const names[] = {"lblDeviceName",     "lblMaxRate",  "lblCallerID",         "lblMonitorDigits",
                               "lblGenerateDigits", "lblDataMode", "lblInteractivevoice", "lblAutoVoice"};
  const auto labels = parts_.engine.Capabilities({});
  for (std::size_t i = 0; i < std::min(labels.size(), std::size(names)); ++i) {
    auto* value = MakeHint(names[i], frame);
    form->addRow(tr(labels[i].first.c_str()), value);
    capabilities_.push_back(value);
  }
  no_device_ = MakeHint("lblNoDevice", frame);
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
  silence_ = MakeChild<QLabel>(page);
  silence_->setObjectName(Name("lblSilence"));
  silence_->setMinimumWidth(silence_->fontMetrics().horizontalAdvance(QStringLiteral("100 %")));
  silence_->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
  meter_ = MakeChild<SilenceMeter>(*sldSilence_, page);
  meter_->setObjectName(Name("prgSilence"));
  meter_text_ = MakeHint("lblLevel", page);
  auto* label = MakeChild<QLabel>(tr("Sil&ence is up to:"), page);
  label->setBuddy(sldSilence_);
  auto* grid = MakeChild<QGridLayout>(page);
  grid->setContentsMargins(0, 0, 0, 0);
  grid->addWidget(label, 0, 0);
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
  txtPass_ = &form_.Get<QLineEdit>("Pass");
  show_password_ = txtPass_->addAction(ThemeIcon("password-show-on"), QLineEdit::TrailingPosition);
  show_password_->setObjectName(Name("actShowPass"));
  show_password_->setText(tr("Show the password"));
  show_password_->setToolTip(tr("Show the password"));
  show_password_->setCheckable(true);
  password_hint_ = MakeHint("lblPassHint", frame);
  form->addRow(QString(), password_hint_);
  return frame;
}

}  // namespace orven
