// SPDX-License-Identifier: GPL-3.0-or-later
#include "actions/frmActions.h"

#include <QVBoxLayout>

#include "widgets/controls.h"
#include "widgets/dialog_parts.h"

namespace orven {
namespace {

constexpr int kFieldWidth = 380;  // pixels; wide enough for most addresses and commands

QString Name(const char* name) {
  return QString::fromLatin1(name);
}

ActWith Entry(const QComboBox& box) {
  return box.currentIndex() == 1 ? ActWith::MessagesOnly : ActWith::AllCalls;
}

}  // namespace

frmActions::frmActions(ActionsDialog& engine, int tab, QWidget* parent)
    : QDialog(parent), engine_(engine), TabStrip1_(MakeChild<QTabWidget>(this)) {
  SetUpDialog(*this, "frmActions", tr("Actions"));
  TabStrip1_->setObjectName(Name("TabStrip1"));
  TabStrip1_->addTab(MakeMail(), tr("E-Mail"));
  TabStrip1_->addTab(MakeApplication(), tr("Application"));
  TabStrip1_->setCurrentIndex(tab);
  auto* column = MakeChild<QVBoxLayout>(this);
  column->addWidget(TabStrip1_);
  const auto closing = MakeClosingButtons(*this);
  connect(closing.cmdOK, &QPushButton::clicked, this, &frmActions::Ok);
  column->addLayout(closing.row);
  engine_.Load([this](const ActionChoices& choices) { Show(choices); });
}

QWidget* frmActions::MakeMail() {
  auto* page = MakeChild<QWidget>(TabStrip1_);
  auto* form = MakeChild<QFormLayout>(page);
  chkSendToMail_ = MakeCheckBox("chkSendToMail", tr("Send Calls To E- Mail"), page);
  form->addRow(chkSendToMail_);
  txtSendToMail_ = AddText(*form, "txtSendToMail", tr("E-Mail To:"));
  txtSMTP_ = AddText(*form, "txtSMTP", tr("SMTP :"));
  txtSMTP_->setToolTip(tr("The mail server: its name, name:port, smtp://… or smtps://…"));
  txtFromMail_ = AddText(*form, "txtFromMail", tr("From(Replay To):"));
  txtSMTPUser_ = AddText(*form, "txtSMTPUser", tr("User:"));
  txtSMTPUser_->setToolTip(tr("Leave empty if the mail server needs no login"));
  txtSMTPPass_ = AddText(*form, "txtSMTPPass", tr("Password:"));
  txtSMTPPass_->setEchoMode(QLineEdit::Password);
  chkSMTPSecure_ = MakeCheckBox("chkSMTPSecure", tr("Log in over an encrypted connection only"), page);
  form->addRow(QString(), chkSMTPSecure_);
  cmbActMail_ = AddList(*form, "cmbActMail");
  return page;
}

QWidget* frmActions::MakeApplication() {
  auto* page = MakeChild<QWidget>(TabStrip1_);
  auto* form = MakeChild<QFormLayout>(page);
  chkApp_ = MakeCheckBox("chkApp", tr("Send Calls To Application"), page);
  form->addRow(chkApp_);
  txtAppTo_ = AddText(*form, "txtAppTo", tr("Application Path:"));
  txtAppTo_->setToolTip(tr("The program and its arguments; put arguments with blanks in double quotes"));
  chkBGAPP_ = MakeCheckBox("chkBGAPP", tr("Background"), page);
  form->addRow(QString(), chkBGAPP_);
  cmbActApp_ = AddList(*form, "cmbActApp");
  auto* parameters = MakeButton("cmdParm", tr("Parameters"), nullptr, page);
  parameters->setToolTip(tr("The details of a call that the program can get"));
  auto* test = MakeButton("frmTest", tr("Test"), nullptr, page);
  test->setToolTip(tr("Start the program now, with made-up call details"));
  auto* row = MakeChild<QHBoxLayout>();
  row->addWidget(parameters);
  row->addWidget(test);
  row->addStretch();
  form->addRow(QString(), row);
  test_result_ = MakeChild<QLabel>(page);
  test_result_->setObjectName(Name("lblTestResult"));
  test_result_->setTextFormat(Qt::PlainText);
  test_result_->setWordWrap(true);
  form->addRow(test_result_);
  connect(parameters, &QPushButton::clicked, this, [this] { engine_.ShowParameters(); });
  connect(test, &QPushButton::clicked, this, &frmActions::Test);
  connect(txtAppTo_, &QLineEdit::textEdited, test_result_, &QLabel::clear);
  return page;
}

QLineEdit* frmActions::AddText(QFormLayout& form, const char* name, const QString& label) {
  auto* field = MakeChild<QLineEdit>(this);
  field->setObjectName(Name(name));
  field->setMinimumWidth(kFieldWidth);
  form.addRow(label, field);
  return field;
}

QComboBox* frmActions::AddList(QFormLayout& form, const char* name) {
  auto* list = MakeChild<QComboBox>(this);
  IgnoreStrayWheel(*list);
  list->setObjectName(Name(name));
  list->setAccessibleName(tr("Calls that this applies to"));
  list->addItem(tr("Act with all calls"));
  list->addItem(tr("Act with messages only!"));
  form.addRow(QString(), list);
  return list;
}

void frmActions::Test() {
  const auto problem = engine_.Test(txtAppTo_->text().toStdString());
  test_result_->setText(problem.empty() ? tr("Started.") : QString::fromStdString(problem));
}

void frmActions::Ok() {
  if (const auto wrong = engine_.Ok(Choices())) {
    GoTo(*wrong);
  } else {
    accept();
  }
}

void frmActions::GoTo(ActionField field) {
  QLineEdit* const fields[] = {txtSendToMail_, txtSMTP_, txtFromMail_, txtAppTo_};
  TabStrip1_->setCurrentIndex(field == ActionField::txtAppTo ? 1 : 0);
  fields[static_cast<std::size_t>(field)]->setFocus();
}

void frmActions::Show(const ActionChoices& choices) {
  chkSendToMail_->setChecked(choices.chkSendToMail);
  txtSendToMail_->setText(QString::fromStdString(choices.txtSendToMail));
  txtSMTP_->setText(QString::fromStdString(choices.txtSMTP));
  txtFromMail_->setText(QString::fromStdString(choices.txtFromMail));
  cmbActMail_->setCurrentIndex(static_cast<int>(choices.cmbActMail));
  txtSMTPUser_->setText(QString::fromStdString(choices.txtSMTPUser));
  txtSMTPPass_->setText(QString::fromStdString(choices.txtSMTPPass));
  chkSMTPSecure_->setChecked(choices.chkSMTPSecure);
  chkApp_->setChecked(choices.chkApp);
  txtAppTo_->setText(QString::fromStdString(choices.txtAppTo));
  txtAppTo_->setCursorPosition(0);  // shows the program's name
  chkBGAPP_->setChecked(choices.chkBGAPP);
  cmbActApp_->setCurrentIndex(static_cast<int>(choices.cmbActApp));
}

ActionChoices frmActions::Choices() const {
  ActionChoices choices;
  choices.chkSendToMail = chkSendToMail_->isChecked();
  choices.txtSendToMail = txtSendToMail_->text().toStdString();
  choices.txtSMTP = txtSMTP_->text().toStdString();
  choices.txtFromMail = txtFromMail_->text().toStdString();
  choices.cmbActMail = Entry(*cmbActMail_);
  choices.txtSMTPUser = txtSMTPUser_->text().toStdString();
  choices.txtSMTPPass = txtSMTPPass_->text().toStdString();
  choices.chkSMTPSecure = chkSMTPSecure_->isChecked();
  choices.chkApp = chkApp_->isChecked();
  choices.txtAppTo = txtAppTo_->text().toStdString();
  choices.chkBGAPP = chkBGAPP_->isChecked();
  choices.cmbActApp = Entry(*cmbActApp_);
  return choices;
}

}  // namespace orven
