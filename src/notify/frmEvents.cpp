// SPDX-License-Identifier: GPL-3.0-or-later
#include "notify/frmEvents.h"

#include <QGroupBox>
#include <QLabel>

#include "widgets/controls.h"
#include "widgets/dialog_parts.h"

namespace orven {
namespace {

constexpr int kButtonIcon = 16;
constexpr int kSoundCharacters = 24;  // width of the list; longer names are cut
constexpr int kTickEvery = 10;

QString Name(const char* name) {
  return QString::fromLatin1(name);
}

}  // namespace

frmEvents::frmEvents(EventsDialog& engine, int tab, QWidget* parent)
    : QDialog(parent), engine_(engine), tabs_(MakeChild<QTabWidget>(this)) {
  SetUpDialog(*this, "frmEvents", tr("Events"));
  tabs_->setObjectName(Name("TabStrip1"));
  tabs_->addTab(MakeGeneral(), tr("General"));
  tabs_->addTab(MakeInComingCall(), tr("In Coming Call"));
  tabs_->addTab(MakeDisconnectCall(), tr("Disconnect Call"));
  tabs_->setCurrentIndex(tab);
  auto* column = MakeChild<QVBoxLayout>(this);
  column->addWidget(tabs_);
  const auto closing = MakeClosingButtons(*this);
  connect(closing.cmdOK, &QPushButton::clicked, this, [this] {
    engine_.Save(Choices());
    accept();
  });
  column->addLayout(closing.row);
  Show(engine_.Load());
  Connect();
}

QWidget* frmEvents::MakeGeneral() {
  auto* page = MakeChild<QWidget>(tabs_);
  auto* column = MakeChild<QVBoxLayout>(page);
  chkAnimation_ = MakeCheckBox("chkAnimation", tr("Animate Caller View"), this);
  column->addWidget(chkAnimation_);
  column->addWidget(MakeSpeed());
  column->addWidget(MakeClosing());
  auto* test = MakeButton("cmdTestViewer", tr("Test"), nullptr, page);
  test->setToolTip(tr("Show the caller view with these options"));
  connect(test, &QPushButton::clicked, this, [this] { engine_.TestViewer(Choices()); });
  column->addWidget(test, 0, Qt::AlignLeft);
  column->addStretch();
  return page;
}

QWidget* frmEvents::MakeSpeed() {
  auto* row = MakeChild<QWidget>(this);
  auto* layout = MakeChild<QHBoxLayout>(row);
  layout->setContentsMargins(0, 0, 0, 0);
  sldAnimationFast_ = MakeChild<QSlider>(Qt::Horizontal, row);
  sldAnimationFast_->setObjectName(Name("sldAnimationFast"));
  sldAnimationFast_->setRange(0, kFastestAnimation);
  sldAnimationFast_->setPageStep(kTickEvery);
  sldAnimationFast_->setTickInterval(kTickEvery);
  sldAnimationFast_->setTickPosition(QSlider::TicksBelow);
  IgnoreStrayWheel(*sldAnimationFast_);
  sldAnimationFast_->setAccessibleName(tr("Speed of the caller view"));
  auto* label = MakeChild<QLabel>(tr("Speed:"), row);
  label->setBuddy(sldAnimationFast_);
  layout->addWidget(label);
  layout->addWidget(MakeChild<QLabel>(QString::number(0), row));
  layout->addWidget(sldAnimationFast_, 1);
  layout->addWidget(MakeChild<QLabel>(QString::number(kFastestAnimation), row));
  return row;
}

QWidget* frmEvents::MakeClosing() {
  auto* row = MakeChild<QWidget>(this);
  auto* layout = MakeChild<QHBoxLayout>(row);
  layout->setContentsMargins(0, 0, 0, 0);
  chkCloseCVAfter_ = MakeCheckBox("chkCloseCVAfter", tr("Close Caller View after"), this);
  cmbCloseCVAfter_ = MakeChild<QComboBox>(row);
  cmbCloseCVAfter_->setObjectName(Name("cmbCloseCVAfter"));
  cmbCloseCVAfter_->setAccessibleName(tr("Seconds after which the caller view closes"));
  IgnoreStrayWheel(*cmbCloseCVAfter_);
  for (const auto seconds : kCloseSeconds) cmbCloseCVAfter_->addItem(QString::number(seconds));
  layout->addWidget(chkCloseCVAfter_);
  layout->addWidget(cmbCloseCVAfter_);
  layout->addWidget(MakeChild<QLabel>(tr("Sec'"), row));
  layout->addStretch();
  return row;
}

QWidget* frmEvents::MakeInComingCall() {
  auto* page = MakeChild<QWidget>(tabs_);
  auto* frame = MakeChild<QGroupBox>(tr("Set events when accepting call"), page);
  auto* column = MakeChild<QVBoxLayout>(frame);
  when_call_ = MakeSound(*column, "chkPlayInCall", "CmbPlayWhenCall", "tlbrPlayWhenCall");
  chkViewDet_ = MakeCheckBox("chkViewDet", tr("Display Caller View"), this);
  column->addWidget(chkViewDet_);
  column->addStretch();
  MakeChild<QVBoxLayout>(page)->addWidget(frame);
  return page;
}

QWidget* frmEvents::MakeDisconnectCall() {
  auto* page = MakeChild<QWidget>(tabs_);
  auto* frame = MakeChild<QGroupBox>(tr("Set events when disconnecting a call"), page);
  auto* column = MakeChild<QVBoxLayout>(frame);
  when_message_ = MakeSound(*column, "chkPlayInMessage", "CmbPlayWhenMessage", "tlbrPlayWhenMessage");
  chkOnlyIfGotMessage_ = MakeCheckBox("chkOnlyIfGotMessage", tr("Only If Got Message"), this);
  chkMsgInMsg_ = MakeCheckBox("chkMsgInMsg", tr("Display Caller View"), this);
  column->addWidget(chkOnlyIfGotMessage_);
  column->addWidget(chkMsgInMsg_);
  column->addStretch();
  MakeChild<QVBoxLayout>(page)->addWidget(frame);
  return page;
}

frmEvents::SoundControls frmEvents::MakeSound(QBoxLayout& column, const char* check, const char* list,
                                              const char* bar) {
  SoundControls controls{MakeCheckBox(check, tr("Play Sound:"), this), MakeChild<QComboBox>(this),
                         MakeChild<ButtonBar>(Name(bar), tr("Sounds"), this)};
  controls.list->setObjectName(Name(list));
  controls.list->setAccessibleName(tr("Sound"));
  controls.list->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
  controls.list->setMinimumContentsLength(kSoundCharacters);
  IgnoreStrayWheel(*controls.list);
  controls.bar->setIconSize({kButtonIcon, kButtonIcon});
  controls.bar->AddButton({"Play", tr("Play"), tr("Play the sound"), "media-playback-start"});
  controls.bar->AddButton({"Stop", tr("Stop"), tr("Stop playing"), "media-playback-stop"});
  controls.bar->AddButton({"Add", tr("Add"), tr("Add a sound"), "list-add"});
  controls.bar->AddButton({"Delete", tr("Delete"), tr("Delete the sound"), "edit-delete"});
  auto* row = MakeChild<QHBoxLayout>();
  row->addWidget(controls.list, 1);
  row->addWidget(controls.bar);
  column.addWidget(controls.play);
  column.addLayout(row);
  return controls;
}

void frmEvents::Connect() {
  ConnectSound(when_call_, EventsDialog::Sounds::WhenCall);
  ConnectSound(when_message_, EventsDialog::Sounds::WhenMessage);
  connect(cmbCloseCVAfter_, &QComboBox::currentIndexChanged, this,
          [this] { engine_.ChangeCloseSeconds(Choices().cmbCloseCVAfter); });
}

void frmEvents::ConnectSound(const SoundControls& controls, EventsDialog::Sounds sounds) {
  connect(controls.bar, &ButtonBar::ButtonClick, this, [this, sounds](const QString& key) {
    auto choices = Choices();
    engine_.ButtonClick(sounds, key.toStdString(), choices);
    ShowSounds(*when_call_.list, choices.CmbPlayWhenCall);
    ShowSounds(*when_message_.list, choices.CmbPlayWhenMessage);
  });
}

void frmEvents::Show(const EventChoices& choices) {
  ShowSounds(*when_call_.list, choices.CmbPlayWhenCall);
  ShowSounds(*when_message_.list, choices.CmbPlayWhenMessage);
  when_call_.play->setChecked(choices.chkPlayInCall);
  chkOnlyIfGotMessage_->setChecked(choices.chkOnlyIfGotMessage);
  when_message_.play->setChecked(choices.chkPlayInMessage);
  chkMsgInMsg_->setChecked(choices.chkMsgInMsg);
  chkViewDet_->setChecked(choices.chkViewDet);
  chkAnimation_->setChecked(choices.chkAnimation);
  sldAnimationFast_->setValue(choices.sldAnimationFast);
  stored_seconds_ = choices.cmbCloseCVAfter;
  cmbCloseCVAfter_->setCurrentIndex(cmbCloseCVAfter_->findText(QString::number(stored_seconds_)));
  chkCloseCVAfter_->setChecked(choices.chkCloseCVAfter);
}

void frmEvents::ShowSounds(QComboBox& box, const SoundList& sounds) {
  box.clear();
  for (const auto& name : sounds.names) box.addItem(QString::fromStdString(name));
  // By default findText ignores letter case, but names may differ only in that.
  const auto flags = Qt::MatchExactly | Qt::MatchCaseSensitive;
  box.setCurrentIndex(sounds.selected.empty() ? -1
                                              : box.findText(QString::fromStdString(sounds.selected), flags));
}

EventChoices frmEvents::Choices() const {
  EventChoices choices;
  choices.chkPlayInCall = when_call_.play->isChecked();
  choices.CmbPlayWhenCall = Sounds(*when_call_.list);
  choices.chkViewDet = chkViewDet_->isChecked();
  choices.chkPlayInMessage = when_message_.play->isChecked();
  choices.CmbPlayWhenMessage = Sounds(*when_message_.list);
  choices.chkOnlyIfGotMessage = chkOnlyIfGotMessage_->isChecked();
  choices.chkMsgInMsg = chkMsgInMsg_->isChecked();
  choices.chkAnimation = chkAnimation_->isChecked();
  choices.sldAnimationFast = sldAnimationFast_->value();
  choices.chkCloseCVAfter = chkCloseCVAfter_->isChecked();
  const auto seconds = cmbCloseCVAfter_->currentText();
  choices.cmbCloseCVAfter = seconds.isEmpty() ? stored_seconds_ : seconds.toInt();
  return choices;
}

SoundList frmEvents::Sounds(const QComboBox& box) {
  SoundList sounds;
  for (int i = 0; i < box.count(); ++i) sounds.names.push_back(box.itemText(i).toStdString());
  sounds.selected = box.currentText().toStdString();
  return sounds;
}

}  // namespace orven
