// SPDX-License-Identifier: GPL-3.0-or-later
#include "setup/frmSetupAway.h"

#include <QCheckBox>
#include <QLineEdit>

#include "widgets/controls.h"
#include "widgets/dialog_parts.h"
#include "widgets/password_field.h"

namespace orven {
namespace {

constexpr const char* kMail[] = {"MailTo", "SMTPServer", "SMTPUser", "SMTPPass"};

std::vector<const SettingRow*> Rows() {
  auto rows = RowsOf(Group::Actions);
  for (const char* name : {"Pass", "KeepAwake"}) rows.push_back(&RowOf(name));
  return rows;
}

}  // namespace

frmSetupAway::frmSetupAway(QWidget* parent)
    : QWidget(parent), form_(*this, Rows()), fields_(MakeFlat<QFormLayout>(this)) {
  fields_->addRow(
      MakeText("lblPassword", this,
               tr("To hear your messages from any telephone, call this machine, key the password while "
                  "the greeting plays, then the star key.")));
  form_.Add(*fields_, "Pass");
  auto& password = form_.Get<QLineEdit>("Pass");
  password.setEchoMode(QLineEdit::Normal);  // whoever sets it up has to know it
  fields_->addRow(QString(), MakePasswordHint(password, this));
  form_.Add(*fields_, "pMailTo");
  for (const char* name : kMail) form_.Add(*fields_, name);
  auto& mail = form_.Get<QCheckBox>("pMailTo");
  connect(&mail, &QCheckBox::toggled, this, &frmSetupAway::ShowMail);
  AddMailTest();
  form_.Add(*fields_, "KeepAwake");
  fields_->addRow(MakeText("lblKeepAwake", this, tr("While it sleeps, nobody answers.")));
  ShowMail(false);
}

void frmSetupAway::AddMailTest() {
  cmdTestMail_ = MakeButton("cmdTestMail", tr("Send a test mail"),
                            tr("Send a mail now with what is in the fields, stored or not"), this);
  cmdTestMail_->setAutoDefault(false);
  fields_->addRow(QString(), cmdTestMail_);
  connect(cmdTestMail_, &QPushButton::clicked, this, &frmSetupAway::TestWanted);
}

void frmSetupAway::ShowMail(bool on) {
  for (const char* name : kMail) fields_->setRowVisible(&form_.Get(name), on);
  fields_->setRowVisible(cmdTestMail_, on);
}

void frmSetupAway::Show(const Choices& choices) {
  form_.Show(choices);
}

}  // namespace orven
