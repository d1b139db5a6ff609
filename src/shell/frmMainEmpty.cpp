// SPDX-License-Identifier: GPL-3.0-or-later
#include "shell/frmMainEmpty.h"

#include <QEvent>
#include <QVBoxLayout>

#include "widgets/controls.h"

namespace orven {

EmptyCallList::EmptyCallList(QWidget* parent) : QWidget(parent) {
  auto* column = MakeFlat<QVBoxLayout>(this);
  column->setSpacing(0);
  auto* text = MakeText("lblNoCalls", this, tr("No calls yet."));
  text->setAlignment(Qt::AlignCenter);
  text->setForegroundRole(QPalette::PlaceholderText);
  text->setWordWrap(false);
  column->addWidget(text);
  lnkTelephone_ = AddLink("lnkTelephone", tr("Set up your telephone"), SetupPage::Telephone);
  lnkGreeting_ = AddLink("lnkGreeting", tr("Choose your greeting"), SetupPage::Greeting);
  lnkPassword_ = AddLink("lnkPassword", tr("See the password for listening from outside"), SetupPage::Away);
  SetColours();
  Show({});
}

/// A button that looks like a link: the keyboard and screen readers know buttons.
QPushButton* EmptyCallList::AddLink(const char* name, const QString& text, SetupPage page) {
  auto* link = MakeNamed<QPushButton>(name, text, this);
  link->setFlat(true);
  link->setCursor(Qt::PointingHandCursor);
  auto font = link->font();
  font.setUnderline(true);
  link->setFont(font);
  static_cast<QVBoxLayout*>(layout())->addWidget(link, 0, Qt::AlignCenter);
  connect(link, &QPushButton::clicked, this, [this, page] { emit SetupWanted(page); });
  return link;
}

void EmptyCallList::SetColours() {
  auto colours = palette();
  colours.setColor(QPalette::ButtonText, colours.color(QPalette::Link));
  for (auto* link : {lnkTelephone_, lnkGreeting_, lnkPassword_}) link->setPalette(colours);
}

void EmptyCallList::changeEvent(QEvent* event) {
  QWidget::changeEvent(event);
  if (event->type() == QEvent::PaletteChange) SetColours();
}

void EmptyCallList::Show(const SetupOffers& offers) {
  lnkTelephone_->setVisible(offers.telephone);
  lnkGreeting_->setVisible(offers.greeting);
  lnkPassword_->setVisible(offers.password);
}

}  // namespace orven
