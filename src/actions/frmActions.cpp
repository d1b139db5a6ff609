// SPDX-License-Identifier: GPL-3.0-or-later
#include "actions/frmActions.h"

#include <QLineEdit>
#include <QVBoxLayout>

#include "widgets/controls.h"
#include "widgets/dialog_parts.h"
#include "widgets/growing_page.h"
#include "widgets/translation.h"

namespace orven {
namespace {

constexpr int kFieldWidth = 380;  // pixels; wide enough for most addresses and commands

}  // namespace

frmActions::frmActions(ActionsDialog& engine, int tab, QWidget* parent)
    : QDialog(parent),
      engine_(engine),
      form_(*this, RowsOf(Group::Actions)),
      TabStrip1_(MakeNamed<QTabWidget>("TabStrip1", this)) {
  SetUpDialog(*this, "frmActions", tr("Actions"));
  TabStrip1_->addTab(MakeMail(), tr("E-Mail"));
  TabStrip1_->addTab(MakeApplication(), tr("Application"));
  for (auto* field : findChildren<QLineEdit*>()) field->setMinimumWidth(kFieldWidth);
  TabStrip1_->setCurrentIndex(tab);
  auto* column = MakeChild<QVBoxLayout>(this);
  column->addWidget(TabStrip1_);
  const auto closing = MakeClosingButtons(*this);
  connect(closing.cmdOK, &QPushButton::clicked, this, &frmActions::Ok);
  column->addLayout(closing.row);
  engine_.Load([this](const Choices& choices) { Show(choices); });
}

QWidget* frmActions::MakeMail() {
  auto* page = MakeChild<QWidget>(TabStrip1_);
  auto* form = MakeChild<QFormLayout>(page);
  for (const char* name : {"pMailTo", "MailTo", "SMTPServer", "MailFrom", "SMTPUser", "SMTPPass"}) {
    form_.Add(*form, name);
  }
  form->addRow(QString(), form_.Make("SMTPSecure"));
  form_.AddRest(*form, 0);
  AddMailTest(*form, page);
  return page;
}

void frmActions::AddMailTest(QFormLayout& form, QWidget* page) {
  cmdTestMail_ = MakeButton("cmdTestMail", tr("Send a test mail"),
                            tr("Send a mail now with what is in the fields, stored or not"), page);
  auto* row = MakeChild<QHBoxLayout>();
  row->addWidget(cmdTestMail_);
  row->addStretch();
  form.addRow(QString(), row);
  mail_result_ = MakeChild<WholeText>("lblMailResult", page, kFieldWidth);
  mail_result_->setText(Shown(engine_.MailProblem()));
  form.addRow(mail_result_);
  connect(cmdTestMail_, &QPushButton::clicked, this, &frmActions::TestMail);
}

void frmActions::TestMail() {
  cmdTestMail_->setEnabled(false);
  mail_result_->setText(tr("Sending a test mail…"));
  engine_.TestMail(form_.Taken(), [this](const MailTestResult& result) {
    mail_result_->setText(Shown(result.text));
    Announce(*mail_result_);
    cmdTestMail_->setEnabled(true);
  });
}

QWidget* frmActions::MakeApplication() {
  auto* page = MakeChild<QWidget>(TabStrip1_);
  auto* form = MakeChild<QFormLayout>(page);
  for (const char* name : {"pAppTo", "AppTo"}) form_.Add(*form, name);
  form->addRow(QString(), form_.Make("pAppToBG"));
  form_.AddRest(*form, 1);
  auto* parameters =
      MakeButton("cmdParm", tr("Parameters"), tr("The details of a call that the program can get"), page);
  auto* test =
      MakeButton("frmTest", tr("Test"), tr("Start the program now, with made-up call details"), page);
  auto* row = MakeChild<QHBoxLayout>();
  row->addWidget(parameters);
  row->addWidget(test);
  row->addStretch();
  form->addRow(QString(), row);
  test_result_ = MakeText("lblTestResult", page);
  form->addRow(test_result_);
  connect(parameters, &QPushButton::clicked, this, [this] { engine_.ShowParameters(); });
  connect(test, &QPushButton::clicked, this, &frmActions::Test);
  connect(&form_.Get<QLineEdit>("AppTo"), &QLineEdit::textEdited, test_result_, &QLabel::clear);
  return page;
}

void frmActions::Test() {
  const auto problem = engine_.Test(form_.Taken().Text("AppTo"));
  test_result_->setText(problem.Empty() ? tr("Started.") : Shown(problem));
  Announce(*test_result_);
}

void frmActions::Ok() {
  const auto* wrong = engine_.Ok(form_.Taken());
  if (wrong == nullptr) return accept();
  TabStrip1_->setCurrentIndex(wrong->page);
  form_.Get(wrong->name).setFocus();
}

void frmActions::Show(const Choices& choices) {
  form_.Show(choices);
  form_.Get<QLineEdit>("AppTo").setCursorPosition(0);  // shows the program's name
}

}  // namespace orven
