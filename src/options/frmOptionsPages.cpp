// SPDX-License-Identifier: GPL-3.0-or-later
//
// The layout of the options dialog's pages.
#include <QFormLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QIntValidator>
#include <QVBoxLayout>

#include "options/frmOptions.h"
#include "widgets/controls.h"
#include "widgets/dialog_parts.h"
#include "widgets/icons.h"

namespace orven {
namespace {

constexpr int kDeviceCharacters = 28;  // the list does not grow with long device names
constexpr int kNumberCharacters = 4;
constexpr int kTickEvery = 10;
constexpr int kLongestSilence = 600;  // seconds
constexpr int kMostRings = 20;

/// Stored values are limited to 2048 bytes; a character takes up to four.
constexpr int kLongestPassword = 500;

QString Name(const char* name) {
  return QString::fromLatin1(name);
}

/// Accepts whole numbers. A field left without one gets its initial value back.
class WholeNumber : public QIntValidator {
 public:
  using QIntValidator::QIntValidator;
  State validate(QString& text, int& place) const override {
    if (text.toInt() > top() || (text.size() > 1 && text.startsWith(u'0'))) return Invalid;
    return QIntValidator::validate(text, place);
  }
  void fixup(QString& text) const override { text = parent()->property(kShownFirst).toString(); }
};

QLabel* MakeHint(const char* name, QWidget* page) {
  auto* hint = MakeChild<QLabel>(page);
  hint->setObjectName(Name(name));
  hint->setTextFormat(Qt::PlainText);
  hint->setWordWrap(true);
  return hint;
}

}  // namespace

QCheckBox* frmOptions::MakeCheck(const char* name, const QString& caption, const QString& tip) {
  auto* check = MakeCheckBox(name, caption, this);
  check->setToolTip(tip);
  return check;
}

QComboBox* frmOptions::MakeList(const char* name, const QString& purpose) {
  auto* list = MakeChild<QComboBox>(this);
  list->setObjectName(Name(name));
  list->setAccessibleName(purpose);
  list->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
  list->setMinimumContentsLength(kDeviceCharacters);
  list->setInsertPolicy(QComboBox::NoInsert);
  IgnoreStrayWheel(*list);
  return list;
}

QComboBox* frmOptions::MakeNumber(const char* name, const QString& purpose, int least, int most) {
  auto* list = MakeList(name, purpose);
  list->setMinimumContentsLength(kNumberCharacters);
  list->setEditable(true);
  list->setCompleter(nullptr);
  list->setValidator(MakeChild<WholeNumber>(least, most, list));
  list->setToolTip(tr("%1, %2 to %3").arg(purpose).arg(least).arg(most));
  return list;
}

QWidget* frmOptions::WithUnit(QWidget* field, const QString& unit) {
  auto* page = MakeChild<QWidget>(this);
  auto* row = MakeChild<QHBoxLayout>(page);
  row->setContentsMargins(0, 0, 0, 0);
  row->addWidget(field);
  row->addWidget(MakeChild<QLabel>(unit, page));
  row->addStretch();
  return page;
}

QWidget* frmOptions::MakeGeneral() {
  auto* page = MakeChild<QWidget>(TabStrip1_);
  page->setObjectName(Name("Frame1"));
  chkRenOnStart_ = MakeCheck("chkRenOnStart", tr("Start ORVEN when I log in"),
                             tr("It then answers from the notification area, without its window"));
  chkQuickToolBar_ = MakeCheck("chkQuickToolBar", tr("Show the quick options toolbar"),
                               tr("Greeting, rings and recording in the main window"));
  chkListMessagesOnly_ = MakeCheck("chkListMessagesOnly", tr("List only calls that left a message"),
                                   tr("Calls without a message are not added to the calls list"));
  chkWornDelete_ = MakeCheck("chkWornDelete", tr("Ask before deleting a call"),
                             tr("A deleted call's message is deleted with it"));
  chkWornClear_ = MakeCheck("chkWornClear", tr("Ask before clearing the calls list"),
                            tr("Clearing leaves the message files where they are"));
  auto* column = MakeChild<QVBoxLayout>(page);
  for (auto* check :
       {chkRenOnStart_, chkQuickToolBar_, chkListMessagesOnly_, chkWornDelete_, chkWornClear_}) {
    column->addWidget(check);
  }
  column->addWidget(MakeMessagesFolder());
  column->addStretch();
  return page;
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

QWidget* frmOptions::MakeDevices() {
  auto* page = MakeChild<QWidget>(TabStrip1_);
  page->setObjectName(Name("Frame2"));
  cmbModemDev_ = MakeList("cmbModemDev", tr("Modem device"));
  cmbModemDev_->setToolTip(
      tr("The telephone line to answer; a change takes effect when the line is next opened"));
  cmbModemDev_->setEditable(true);
  cmbModemDev_->setCompleter(nullptr);  // names may differ in the case of their letters only
  auto* lines = MakeButton("cmdLines", tr("&Lines…"), nullptr, page);
  lines->setToolTip(tr("Add, change, test and remove telephone lines"));
  lines->setEnabled(bool(parts_.open_lines));
  connect(lines, &QPushButton::clicked, this, &frmOptions::OpenLines);
  auto* row = MakeChild<QHBoxLayout>();
  row->addWidget(cmbModemDev_, 1);
  row->addWidget(lines);
  auto* device = MakeChild<QLabel>(tr("&Modem device:"), page);
  device->setBuddy(cmbModemDev_);
  cmbSoundDev_ = MakeList("cmbSoundDev", tr("Sound card"));
  cmbSoundDev_->setToolTip(tr("Where messages and greetings are heard and greetings are recorded"));
  auto* form = MakeChild<QFormLayout>();
  form->addRow(device, row);
  form->addRow(MakeCapabilities());
  form->addRow(tr("&Sound card:"), cmbSoundDev_);
  auto* column = MakeChild<QVBoxLayout>(page);
  column->addLayout(form);
  column->addStretch();
  return page;
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

QWidget* frmOptions::MakeAnswerMode() {
  auto* page = MakeChild<QWidget>(TabStrip1_);
  page->setObjectName(Name("Frame3"));
  txtNumOfRing_ = MakeNumber("txtNumOfRing", tr("Rings before a call is answered"), 1, kMostRings);
  txtRecLong_ = MakeNumber("txtRecLong", tr("Minutes of the longest message"), 1, kLongestMessage);
  greetings_ = MakeChild<frmOptionsGreetings>(parts_.greetings, page);
  cmdRecordMessage_ = MakeCheck("cmdRecordMessage", tr("Record a message after the greeting"),
                                tr("Otherwise the call ends after the greeting"));
  chkPreScreen_ = MakeCheck("chkPreScreen", tr("Listen in while a message is recorded"),
                            tr("The caller is heard on the sound card"));
  auto* rings = MakeChild<QLabel>(tr("&Answer after:"), page);
  rings->setBuddy(txtNumOfRing_);
  auto* length = MakeChild<QLabel>(tr("Longest &message:"), page);
  length->setBuddy(txtRecLong_);
  auto* form = MakeChild<QFormLayout>();
  form->addRow(rings, WithUnit(txtNumOfRing_, tr("rings")));
  form->addRow(greetings_);
  form->addRow(cmdRecordMessage_);
  form->addRow(length, WithUnit(txtRecLong_, tr("minutes")));
  form->addRow(chkPreScreen_);
  auto* column = MakeChild<QVBoxLayout>(page);
  column->addLayout(form);
  column->addStretch();
  return page;
}

QWidget* frmOptions::MakeAdvanced() {
  auto* page = MakeChild<QWidget>(TabStrip1_);
  page->setObjectName(Name("Frame4"));
  chkCompress_ = MakeCheck("chkCompress", tr("Store messages compressed"),
                           tr("Half the size, in the quality of the telephone"));
  auto* column = MakeChild<QVBoxLayout>(page);
  column->addWidget(MakeSilence());
  column->addWidget(MakeRemoteAccess());
  column->addWidget(chkCompress_);
  column->addStretch();
  return page;
}

QWidget* frmOptions::MakeSilence() {
  auto* frame = MakeChild<QGroupBox>(tr("Silence"), this);
  chkDropIfSilnce_ =
      MakeCheck("chkDropIfSilnce", tr("Hang up when the caller is silent for"),
                tr("Otherwise a message ends when the caller hangs up, or when it is too long"));
  cmbSilenceSec_ =
      MakeNumber("cmbSilenceSec", tr("Seconds of silence that end a message"), 1, kLongestSilence);
  auto* row = MakeChild<QHBoxLayout>();
  row->addWidget(chkDropIfSilnce_);
  row->addWidget(WithUnit(cmbSilenceSec_, tr("seconds")), 1);
  auto* column = MakeChild<QVBoxLayout>(frame);
  column->addLayout(row);
  column->addWidget(MakeSilenceLevel());
  return frame;
}

QWidget* frmOptions::MakeSilenceLevel() {
  auto* page = MakeChild<QWidget>(this);
  sldSilence_ = MakeChild<QSlider>(Qt::Horizontal, page);
  sldSilence_->setObjectName(Name("sldSilence"));
  sldSilence_->setRange(0, kLoudestSilence);
  sldSilence_->setPageStep(kTickEvery);
  sldSilence_->setAccessibleName(tr("Level up to which a caller is silent, in percent of full level"));
  sldSilence_->setToolTip(tr("Choose a level above the noise of the line and below speech"));
  IgnoreStrayWheel(*sldSilence_);
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
  chkAllowRemoteAccess_ =
      MakeCheck("chkAllowRemoteAccess", tr("Hear my messages from another telephone"),
                tr("Call this machine, key the password while the greeting plays, then the star key. "
                   "The password works whether this is checked or not"));
  txtPass_ = MakeChild<QLineEdit>(frame);
  txtPass_->setObjectName(Name("txtPass"));
  txtPass_->setEchoMode(QLineEdit::Password);
  txtPass_->setMaxLength(kLongestPassword);
  txtPass_->setToolTip(tr("Digits that a telephone can key"));
  show_password_ = txtPass_->addAction(ThemeIcon("password-show-on"), QLineEdit::TrailingPosition);
  show_password_->setObjectName(Name("actShowPass"));
  show_password_->setText(tr("Show the password"));
  show_password_->setToolTip(tr("Show the password"));
  show_password_->setCheckable(true);
  password_hint_ = MakeHint("lblPassHint", frame);
  auto* form = MakeChild<QFormLayout>(frame);
  form->addRow(chkAllowRemoteAccess_);
  form->addRow(tr("&Password:"), txtPass_);
  form->addRow(QString(), password_hint_);
  return frame;
}

}  // namespace orven
