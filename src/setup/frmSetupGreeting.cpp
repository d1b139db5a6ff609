// SPDX-License-Identifier: GPL-3.0-or-later
#include "setup/frmSetupGreeting.h"

#include <QHBoxLayout>
#include <QPushButton>
#include <QVBoxLayout>

#include "widgets/controls.h"
#include "widgets/dialog_parts.h"

namespace orven {

frmSetupGreeting::frmSetupGreeting(QWidget* parent)
    : QWidget(parent), lblGreeting_(MakeText("lblGreeting", this)) {
  const auto make = [this](const char* name, const QString& text, const QString& tip, const char* icon) {
    auto* button = MakeButton(name, text, tip, this, icon);
    button->setAutoDefault(false);
    return button;
  };
  auto* play = make("cmdPlay", tr("&Hear it"), tr("Play it on the sound card"), "media-playback-start");
  auto* type =
      make("cmdType", tr("&Type a greeting…"), tr("A voice of this computer speaks it"), "text-speak");
  auto* speak = make("cmdSpeak", tr("Sp&eak a greeting…"), tr("Record it with the microphone"),
                     "audio-input-microphone");
  auto* present = MakeChild<QHBoxLayout>();
  present->addWidget(lblGreeting_, 1);
  present->addWidget(play);
  auto* own = MakeChild<QHBoxLayout>();
  own->addWidget(type);
  own->addWidget(speak);
  own->addStretch();
  auto* column = MakeFlat<QVBoxLayout>(this);
  column->addWidget(
      MakeText("lblAbout", this, tr("Callers hear a greeting and a beep, then leave their message.")));
  column->addLayout(present);
  column->addWidget(MakeText("lblOwn", this, tr("Make a greeting of your own, or keep this one.")));
  column->addLayout(own);
  column->addStretch();
  connect(play, &QPushButton::clicked, this, &frmSetupGreeting::PlayWanted);
  connect(type, &QPushButton::clicked, this, [this] { emit MakeWanted(CreatorTab::TextToSpeech); });
  connect(speak, &QPushButton::clicked, this, [this] { emit MakeWanted(CreatorTab::Speaker); });
}

void frmSetupGreeting::Show(const std::string& name) {
  lblGreeting_->setText(tr("Callers hear the greeting \"%1\".").arg(QString::fromStdString(name)));
}

}  // namespace orven
