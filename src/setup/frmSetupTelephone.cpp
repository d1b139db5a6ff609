// SPDX-License-Identifier: GPL-3.0-or-later
#include "setup/frmSetupTelephone.h"

#include <QEvent>
#include <QPushButton>
#include <QRadioButton>
#include <QVBoxLayout>

#include "widgets/controls.h"
#include "widgets/dialog_parts.h"
#include "widgets/password_field.h"
#include "widgets/translation.h"

namespace orven {

frmSetupTelephone::frmSetupTelephone(QWidget* parent)
    : QWidget(parent),
      kinds_(MakeChild<QButtonGroup>(this)),
      lblAbout_(MakeText("lblAbout", this)),
      lblNote_(MakeText("lblNote", this)) {
  auto* column = MakeFlat<QVBoxLayout>(this);
  column->addWidget(MakeText("lblQuestion", this, tr("What takes the calls that this machine answers?")));
  AddKind(TelephoneKind::Router, "optRouter", tr("A home &router with a telephone line"));
  AddKind(TelephoneKind::Account, "optAccount", tr("A SIP &account of a telephone provider or an office"));
  AddKind(TelephoneKind::Modem, "optModem", tr("A &voice modem on a telephone socket"));
  AddKind(TelephoneKind::Try, "optTry", tr("&Just try it: programs on this computer"));
  AddAccount();
  for (auto* widget : std::initializer_list<QWidget*>{lblAbout_, account_, lblNote_})
    column->addWidget(widget);
  column->addStretch();
  auto* more = MakeButton("cmdMore", tr("&More…"),
                          tr("All fields of the line: transport, login name, address for calls"), this);
  more->setAutoDefault(false);
  column->addWidget(more, 0, Qt::AlignLeft);
  connect(more, &QPushButton::clicked, this, &frmSetupTelephone::MoreWanted);
  connect(kinds_, &QButtonGroup::idClicked, this, [this](int id) {
    if (id != shown_) emit Chosen(static_cast<TelephoneKind>(id));
  });
}

void frmSetupTelephone::AddKind(TelephoneKind kind, const char* name, const QString& text) {
  auto* button = MakeNamed<QRadioButton>(name, text, this);
  button->installEventFilter(this);
  kinds_->addButton(button, static_cast<int>(kind));
  layout()->addWidget(button);
}

void frmSetupTelephone::AddAccount() {
  account_ = MakeChild<QWidget>(this);
  txtServer_ = MakeNamed<QLineEdit>("txtServer", account_);
  txtUser_ = MakeNamed<QLineEdit>("txtUser", account_);
  txtPassword_ = MakeNamed<QLineEdit>("txtPassword", account_);
  auto* form = MakeFlat<QFormLayout>(account_);
  form->setFieldGrowthPolicy(QFormLayout::AllNonFixedFieldsGrow);
  form->addRow(MakeCaption(tr("&Server:"), txtServer_), txtServer_);
  form->addRow(MakeCaption(tr("N&umber or user name:"), txtUser_), txtUser_);
  form->addRow(MakeCaption(tr("&Password:"), txtPassword_), txtPassword_);
  HidePassword(*txtPassword_);
  for (auto* field : {txtServer_, txtUser_, txtPassword_})
    connect(field, &QLineEdit::textEdited, this, [this] { emit Edited(); });
}

void frmSetupTelephone::Show(TelephoneKind kind, const TelephoneLine& line, const Words& note) {
  shown_ = static_cast<int>(kind);
  kinds_->button(shown_)->setChecked(true);
  const bool account = kind == TelephoneKind::Router || kind == TelephoneKind::Account;
  account_->setVisible(account);
  txtServer_->setText(QString::fromStdString(line.server));
  txtUser_->setText(QString::fromStdString(line.user));
  txtPassword_->setText(QString::fromStdString(line.password));
  const QString about[] = {
      tr("Add a telephone for this computer in the router's own pages, and type its name and password here."),
      tr("The provider's letter or web page names these three."),
      tr("Plug the modem into the computer and the telephone socket. ORVEN finds its port by itself."),
      tr("Nothing is needed: a softphone on this computer can call ORVEN. Set up your line later.")};
  lblAbout_->setText(about[shown_]);
  lblNote_->setText(Shown(note));
  lblNote_->setVisible(!note.Empty());
}

TelephoneLine frmSetupTelephone::Typed(TelephoneLine line) const {
  if (account_->isHidden()) return line;
  line.server = txtServer_->text().trimmed().toStdString();
  line.user = txtUser_->text().trimmed().toStdString();
  line.password = txtPassword_->text().toStdString();
  return line;
}

/// A click leads on to the fields. The arrow keys stay with the kinds.
bool frmSetupTelephone::eventFilter(QObject* watched, QEvent* event) {
  if (event->type() == QEvent::MouseButtonRelease)
    QMetaObject::invokeMethod(this, &frmSetupTelephone::GoToFirstEmpty, Qt::QueuedConnection);
  return QWidget::eventFilter(watched, event);
}

void frmSetupTelephone::GoToFirstEmpty() {
  for (auto* field : {txtServer_, txtUser_, txtPassword_})
    if (field->isVisible() && field->text().isEmpty()) return field->setFocus();
}

}  // namespace orven
