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

constexpr int kTickEvery = 10;

}  // namespace

frmEvents::frmEvents(EventsDialog& engine, int tab, QWidget* parent)
    : QDialog(parent),
      engine_(engine),
      form_(*this, RowsOf(Group::Events)),
      tabs_(MakeNamed<QTabWidget>("TabStrip1", this)) {
  SetUpDialog(*this, "frmEvents", tr("Events"));
  AddGeneral();
  when_call_ = AddSounds(1, tr("In Coming Call"), tr("Set events when accepting call"), "cPlayInRing",
                         "CmbPlayWhenCall", "tlbrPlayWhenCall");
  when_message_ = AddSounds(2, tr("Disconnect Call"), tr("Set events when disconnecting a call"),
                            "cPlayInIdle", "CmbPlayWhenMessage", "tlbrPlayWhenMessage");
  tabs_->setCurrentIndex(tab);
  auto* column = MakeChild<QVBoxLayout>(this);
  column->addWidget(tabs_);
  const auto closing = MakeClosingButtons(*this);
  connect(closing.cmdOK, &QPushButton::clicked, this, [this] {
    engine_.Save(Taken());
    accept();
  });
  column->addLayout(closing.row);
  const auto choices = engine_.Load();
  when_call_->Show(engine_.Sounds(choices.Text("PlayInRing")));
  when_message_->Show(engine_.Sounds(choices.Text("PlayInIdle")));
  form_.Show(choices);
  // After the values are shown: only a person's choice is stored at once.
  connect(&form_.Get<QComboBox>("CloseCallerView"), &QComboBox::currentIndexChanged, this,
          [this] { engine_.ChangeCloseSeconds(Taken()); });
  Connect(*when_call_, *when_message_);
  Connect(*when_message_, *when_call_);
}

void frmEvents::AddGeneral() {
  auto* page = MakeChild<QWidget>(tabs_);
  auto* column = MakeChild<QVBoxLayout>(page);
  auto* form = MakeChild<QFormLayout>();
  column->addLayout(form);
  form_.Add(*form, "cAnimation");
  form->addRow(MakeSpeed());
  form->addRow(MakeClosing());
  form_.AddRest(*form, 0);
  auto* test = MakeButton("cmdTestViewer", tr("Test"), tr("Show the caller view with these options"), page);
  connect(test, &QPushButton::clicked, this, [this] { engine_.TestViewer(Taken()); });
  column->addWidget(test, 0, Qt::AlignLeft);
  column->addStretch();
  tabs_->addTab(page, tr("General"));
}

QWidget* frmEvents::MakeSpeed() {
  auto* row = MakeChild<QWidget>(this);
  auto* layout = MakeFlat<QHBoxLayout>(row);
  form_.Make("AnimationFast");
  auto& slider = form_.Get<QSlider>("AnimationFast");
  slider.setTickInterval(kTickEvery);
  slider.setTickPosition(QSlider::TicksBelow);
  layout->addWidget(MakeCaption(tr("Speed:"), &slider));
  layout->addWidget(MakeChild<QLabel>(QString::number(slider.minimum()), row));
  layout->addWidget(&slider, 1);
  layout->addWidget(MakeChild<QLabel>(QString::number(slider.maximum()), row));
  return row;
}

QWidget* frmEvents::MakeClosing() {
  auto* row = MakeChild<QWidget>(this);
  auto* layout = MakeFlat<QHBoxLayout>(row);
  layout->addWidget(form_.Make("cCloseCallerView"));
  layout->addWidget(form_.Make("CloseCallerView"), 1);
  return row;
}

SoundBox* frmEvents::AddSounds(int page, const QString& tab, const QString& title, const char* play,
                               const char* list, const char* bar) {
  auto* sheet = MakeChild<QWidget>(tabs_);
  auto* frame = MakeChild<QGroupBox>(title, sheet);
  auto* form = MakeChild<QFormLayout>(frame);
  form_.Add(*form, play);
  auto* box = MakeChild<SoundBox>(SoundBox::Texts{list, bar, tr("Sound"), tr("Sounds"), tr("Play the sound"),
                                                  tr("Add a sound"), tr("Delete the sound")},
                                  this);
  form->addRow(box);
  form_.AddRest(*form, page);
  MakeChild<QVBoxLayout>(sheet)->addWidget(frame);
  tabs_->addTab(sheet, tab);
  return box;
}

void frmEvents::Connect(SoundBox& box, SoundBox& other) {
  connect(&box, &SoundBox::ButtonClick, this, [this, &box, &other](const QString& key) {
    auto sounds = box.Sounds();
    auto other_sounds = other.Sounds();
    engine_.ButtonClick(key.toStdString(), sounds, other_sounds);
    box.Show(sounds);
    other.Show(other_sounds);
  });
}

Choices frmEvents::Taken() const {
  auto choices = form_.Taken();
  choices["PlayInRing"] = when_call_->Sounds().selected;
  choices["PlayInIdle"] = when_message_->Sounds().selected;
  return choices;
}

}  // namespace orven
