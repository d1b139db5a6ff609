// SPDX-License-Identifier: GPL-3.0-or-later
#include "widgets/sound_box.h"

#include <QHBoxLayout>

#include "widgets/controls.h"

namespace orven {
namespace {

constexpr int kButtonIcon = 16;
constexpr int kCharacters = 24;  // width of the list; longer names are cut

}  // namespace

SoundBox::SoundBox(const Texts& texts, QWidget* parent)
    : QWidget(parent),
      list_(MakeNamed<QComboBox>(texts.list, this)),
      bar_(MakeChild<ButtonBar>(QString::fromLatin1(texts.bar), texts.title, this)) {
  list_->setAccessibleName(texts.purpose);
  list_->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
  list_->setMinimumContentsLength(kCharacters);
  IgnoreStrayWheel(*list_);
  bar_->setIconSize({kButtonIcon, kButtonIcon});
  bar_->AddButton({"Play", tr("Play"), texts.play, "media-playback-start"});
  bar_->AddButton({"Stop", tr("Stop"), tr("Stop playing"), "media-playback-stop"});
  bar_->AddButton({"Add", tr("Add"), texts.add, "list-add"});
  bar_->AddButton({"Delete", tr("Delete"), texts.remove, "edit-delete"});
  auto* row = MakeFlat<QHBoxLayout>(this);
  row->addWidget(list_, 1);
  row->addWidget(bar_);
  connect(bar_, &ButtonBar::ButtonClick, this, &SoundBox::ButtonClick);
}

void SoundBox::Show(const SoundList& sounds) {
  FillList(*list_, sounds.names);
  // By default findText ignores letter case, but names may differ only in that.
  const auto flags = Qt::MatchExactly | Qt::MatchCaseSensitive;
  list_->setCurrentIndex(list_->findText(QString::fromStdString(sounds.selected), flags));
}

SoundList SoundBox::Sounds() const {
  SoundList sounds{{}, list_->currentText().toStdString()};
  for (int i = 0; i < list_->count(); ++i) sounds.names.push_back(list_->itemText(i).toStdString());
  return sounds;
}

}  // namespace orven
