// SPDX-License-Identifier: GPL-3.0-or-later
#include "notify/frmEvents.h"

#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QSlider>
#include <QVBoxLayout>

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
    : QDialog(parent),
      engine_(engine),
      form_(*this, RowsOf(Group::Events)),
      tabs_(MakeChild<QTabWidget>(this)) {
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
    engine_.Save(Taken());
    accept();
  });
  column->addLayout(closing.row);
  Show(engine_.Load());
  Connect();
}

QWidget* frmEvents::MakeGeneral() {
  auto* page = MakeChild<QWidget>(tabs_);
  auto* column = MakeChild<QVBoxLayout>(page);
  auto* form = MakeChild<QFormLayout>();
  column->addLayout(form);
  form_.Add(*form, "cAnimation");
  form->addRow(MakeSpeed());
  form->addRow(MakeClosing());
  form_.AddRest(*form, 0);
  auto* test = MakeButton("cmdTestViewer", tr("Test"), nullptr, page);
  test->setToolTip(tr("Show the caller view with these options"));
  connect(test, &QPushButton::clicked, this, [this] { engine_.TestViewer(Taken()); });
  column->addWidget(test, 0, Qt::AlignLeft);
  column->addStretch();
  return page;
}

QWidget* frmEvents::MakeSpeed() {
  auto* row = MakeChild<QWidget>(this);
  auto* layout = MakeChild<QHBoxLayout>(row);
  layout->setContentsMargins(0, 0, 0, 0);
  form_.Make("AnimationFast");
  auto& slider = form_.Get<QSlider>("AnimationFast");
  slider.setTickInterval(kTickEvery);
  slider.setTickPosition(QSlider::TicksBelow);
  auto* label = MakeChild<QLabel>(tr("Speed:"), row);
  label->setBuddy(&slider);
  layout->addWidget(label);
  layout->addWidget(MakeChild<QLabel>(QString::number(slider.minimum()), row));
  layout->addWidget(&slider, 1);
  layout->addWidget(MakeChild<QLabel>(QString::number(slider.maximum()), row));
  return row;
}

QWidget* frmEvents::MakeClosing() {
  auto* row = MakeChild<QWidget>(this);
  auto* layout = MakeChild<QHBoxLayout>(row);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->addWidget(form_.Make("cCloseCallerView"));
  layout->addWidget(form_.Make("CloseCallerView"), 1);
  return row;
}

QWidget* frmEvents::MakeInComingCall() {
  auto* page = MakeChild<QWidget>(tabs_);
  auto* frame = MakeChild<QGroupBox>(tr("Set events when accepting call"), page);
  auto* form = MakeChild<QFormLayout>(frame);
  form_.Add(*form, "cPlayInRing");
  when_call_ = MakeSound(*form, "CmbPlayWhenCall", "tlbrPlayWhenCall");
  form_.AddRest(*form, 1);
  MakeChild<QVBoxLayout>(page)->addWidget(frame);
  return page;
}

QWidget* frmEvents::MakeDisconnectCall() {
  auto* page = MakeChild<QWidget>(tabs_);
  auto* frame = MakeChild<QGroupBox>(tr("Set events when disconnecting a call"), page);
  auto* form = MakeChild<QFormLayout>(frame);
  form_.Add(*form, "cPlayInIdle");
  when_message_ = MakeSound(*form, "CmbPlayWhenMessage", "tlbrPlayWhenMessage");
  form_.AddRest(*form, 2);
  MakeChild<QVBoxLayout>(page)->addWidget(frame);
  return page;
}

frmEvents::SoundControls frmEvents::MakeSound(QFormLayout& form, const char* list, const char* bar) {
  const SoundControls controls{MakeChild<QComboBox>(this),
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
  form.addRow(row);
  return controls;
}

void frmEvents::Connect() {
  ConnectSound(when_call_, when_message_);
  ConnectSound(when_message_, when_call_);
  connect(&form_.Get<QComboBox>("CloseCallerView"), &QComboBox::currentIndexChanged, this,
          [this] { engine_.ChangeCloseSeconds(Taken()); });
}

void frmEvents::ConnectSound(const SoundControls& controls, const SoundControls& other) {
  connect(controls.bar, &ButtonBar::ButtonClick, this, [&](const QString& key) {
    auto sounds = Sounds(*controls.list);
    auto other_sounds = Sounds(*other.list);
    engine_.ButtonClick(key.toStdString(), sounds, other_sounds);
    ShowSounds(*controls.list, sounds);
    ShowSounds(*other.list, other_sounds);
  });
}

void frmEvents::Show(const Choices& choices) {
  ShowSounds(*when_call_.list, engine_.Sounds(choices.Text("PlayInRing")));
  ShowSounds(*when_message_.list, engine_.Sounds(choices.Text("PlayInIdle")));
  form_.Show(choices);
}

void frmEvents::ShowSounds(QComboBox& box, const SoundList& sounds) {
  FillList(box, sounds.names, sounds.selected);
}

Choices frmEvents::Taken() const {
  auto choices = form_.Taken();
  choices["PlayInRing"] = when_call_.list->currentText().toStdString();
  choices["PlayInIdle"] = when_message_.list->currentText().toStdString();
  return choices;
}

SoundList frmEvents::Sounds(const QComboBox& box) {
  return {ListItems(box), box.currentText().toStdString()};
}

}  // namespace orven
