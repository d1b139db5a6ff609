// SPDX-License-Identifier: GPL-3.0-or-later
#include "options/frmLineEdit.h"

#include <QHBoxLayout>
#include <QPushButton>
#include <QVBoxLayout>
#include <array>

#include "widgets/controls.h"
#include "widgets/dialog_parts.h"

namespace orven {
namespace {

constexpr int kFieldWidth = 360;  // pixels; shows most server and port names in full

struct Transport {
  const char* text;
  const char* transport;
  const char* srtp;  ///< as stored
};

constexpr std::array kTransports{
    Transport{QT_TRANSLATE_NOOP("frmLineEdit", "UDP"), "udp", ""},
    Transport{QT_TRANSLATE_NOOP("frmLineEdit", "TCP"), "tcp", ""},
    Transport{QT_TRANSLATE_NOOP("frmLineEdit", "TLS with SRTP (encrypted)"), "tls", ""},
    Transport{QT_TRANSLATE_NOOP("frmLineEdit", "TLS (sound not encrypted)"), "tls", "no"},
};

int TransportIndex(const TelephoneLine& line) {
  if (line.transport == "tcp") return 1;
  if (line.transport == "tls") return line.srtp == "no" ? 3 : 2;
  return 0;
}

QString Name(const char* name) {
  return QString::fromLatin1(name);
}

}  // namespace

frmLineEdit::frmLineEdit(LinesDialog& engine, std::optional<std::size_t> index, QWidget* parent)
    : QDialog(parent), engine_(engine), index_(index), line_(index ? engine.At(*index) : engine.NewLine()) {
  SetUpDialog(*this, "frmLineEdit", index ? tr("Telephone Line") : tr("New Telephone Line"));
  auto* column = MakeChild<QVBoxLayout>(this);
  form_ = MakeChild<QFormLayout>();
  column->addLayout(form_);
  MakeFields(!index);
  test_ = MakeChild<frmLineTest>(
      engine_, [this] { return CheckedLine(); }, this);
  column->addWidget(test_);
  column->addStretch();
  const auto buttons = MakeClosingButtons(*this);
  connect(buttons.cmdOK, &QPushButton::clicked, this, &frmLineEdit::Ok);
  column->addLayout(buttons.row);
  Show(line_);
  for (auto* field : findChildren<QLineEdit*>()) {
    connect(field, &QLineEdit::textChanged, this, &frmLineEdit::Changed);
  }
  for (auto* list : findChildren<QComboBox*>()) {
    IgnoreStrayWheel(*list);
    connect(list, &QComboBox::currentIndexChanged, this, &frmLineEdit::Changed);
  }
  txtName_->setFocus();
  txtName_->selectAll();
}

void frmLineEdit::MakeFields(bool fresh) {
  txtName_ = AddText("txtName", tr("&Name:"), tr("The line's name in this program"));
  cmbKind_ = AddList("cmbKind", tr("&Kind:"));
  cmbKind_->addItem(tr("SIP (Internet telephony)"));
  cmbKind_->addItem(tr("Modem"));
  if (line_.kind == LineKind::Sim) cmbKind_->addItem(tr("Simulation"));
  cmbKind_->setEnabled(fresh);
  MakeSipFields();
  MakeModemFields();
  txtScript_ = AddText("txtScript", tr("Scr&ipt:"), tr("A file that describes the calls to simulate"));
  lblFault_ = MakeChild<QLabel>(this);
  lblFault_->setObjectName(Name("lblFault"));
  lblFault_->setTextFormat(Qt::PlainText);
  lblFault_->setWordWrap(true);
  auto font = lblFault_->font();
  font.setBold(true);
  lblFault_->setFont(font);
  lblFault_->hide();
  connect(cmbKind_, &QComboBox::currentIndexChanged, this, &frmLineEdit::ShowKind);
}

void frmLineEdit::MakeSipFields() {
  txtServer_ =
      AddText("txtServer", tr("&Server:"),
              tr("The account's server: its name or address, perhaps with \":\" and a port; empty for calls "
                 "that come directly to this computer"));
  txtServer_->setPlaceholderText(tr("sip.example.org, or the home router"));
  txtUser_ = AddText("txtUser", tr("&User:"), tr("The account's name or telephone number"));
  txtAuthUser_ = AddText("txtAuthUser", tr("&Login name:"),
                         tr("Only if the server expects a login name other than the user"));
  txtAuthUser_->setPlaceholderText(tr("the same as the user"));
  password_row_ = MakeChild<QWidget>(this);
  auto* row = MakeChild<QHBoxLayout>(password_row_);
  row->setContentsMargins(0, 0, 0, 0);
  txtPassword_ = MakeChild<QLineEdit>(password_row_);
  txtPassword_->setObjectName(Name("txtPassword"));
  txtPassword_->setEchoMode(QLineEdit::Password);
  chkShowPassword_ = MakeCheckBox("chkShowPassword", tr("S&how"), password_row_);
  chkShowPassword_->setToolTip(tr("Show the password"));
  row->addWidget(txtPassword_, 1);
  row->addWidget(chkShowPassword_);
  AddRow(tr("&Password:"), txtPassword_, password_row_);
  connect(chkShowPassword_, &QCheckBox::toggled, this,
          [this](bool shown) { txtPassword_->setEchoMode(shown ? QLineEdit::Normal : QLineEdit::Password); });
  cmbTransport_ = AddList("cmbTransport", tr("T&ransport:"));
  cmbTransport_->setToolTip(tr("How the server is reached; the provider says which ones it supports"));
  for (const auto& transport : kTransports) cmbTransport_->addItem(tr(transport.text));
  txtListen_ =
      AddText("txtListen", tr("&Address for calls:"),
              tr("Where this computer waits for calls: one of its addresses and a port. 0.0.0.0 is every "
                 "network, 127.0.0.1 this computer only"));
  spnRing_ = MakeChild<QSpinBox>(this);
  spnRing_->setObjectName(Name("spnRing"));
  spnRing_->setRange(1, 60);
  spnRing_->setSuffix(tr(" s"));
  spnRing_->setToolTip(tr("The time from ring to ring; the answering machine counts the rings"));
  IgnoreStrayWheel(*spnRing_);
  AddRow(tr("Time &between rings:"), spnRing_, spnRing_);
}

void frmLineEdit::MakeModemFields() {
  port_row_ = MakeChild<QWidget>(this);
  auto* row = MakeChild<QHBoxLayout>(port_row_);
  row->setContentsMargins(0, 0, 0, 0);
  cmbPort_ = AddList("cmbPort", tr("P&ort:"), port_row_);
  cmbPort_->setEditable(true);
  cmbPort_->setToolTip(tr("The serial port of the modem"));
  auto* find = MakeButton("cmdFindPorts", tr("&Find"), nullptr, port_row_);
  find->setToolTip(tr("Look for ports again, after a modem has been plugged in"));
  row->addWidget(cmbPort_, 1);
  row->addWidget(find);
  connect(find, &QPushButton::clicked, this, &frmLineEdit::FillPorts);
  port_hint_ = MakeChild<QLabel>(tr("auto: the first voice modem that is found, on any port."), this);
  port_hint_->setWordWrap(true);
  form_->addRow(QString(), port_hint_);
}

void frmLineEdit::AddRow(const QString& label, QWidget* field, QWidget* row) {
  row->setMinimumWidth(kFieldWidth);
  auto* caption = MakeChild<QLabel>(label, this);
  caption->setBuddy(field);
  form_->addRow(caption, row);
}

QLineEdit* frmLineEdit::AddText(const char* name, const QString& label, const QString& tip) {
  auto* field = MakeChild<QLineEdit>(this);
  field->setObjectName(Name(name));
  field->setToolTip(tip);
  AddRow(label, field, field);
  return field;
}

QComboBox* frmLineEdit::AddList(const char* name, const QString& label, QWidget* row) {
  auto* list = MakeChild<QComboBox>(row != nullptr ? row : this);
  list->setObjectName(Name(name));
  list->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
  AddRow(label, list, row != nullptr ? row : list);
  return list;
}

void frmLineEdit::Show(const TelephoneLine& line) {
  txtName_->setText(QString::fromStdString(line.name));
  cmbKind_->setCurrentIndex(static_cast<int>(line.kind));
  txtServer_->setText(QString::fromStdString(line.server));
  txtUser_->setText(QString::fromStdString(line.user));
  txtAuthUser_->setText(QString::fromStdString(line.auth_user));
  txtPassword_->setText(QString::fromStdString(line.password));
  cmbTransport_->setCurrentIndex(TransportIndex(line));
  txtListen_->setText(QString::fromStdString(line.listen));
  spnRing_->setValue(line.ring_seconds);
  txtScript_->setText(QString::fromStdString(line.script));
  cmbPort_->setEditText(QString::fromStdString(line.port));
  FillPorts();
  ShowKind();
}

void frmLineEdit::FillPorts() {
  const auto text = cmbPort_->currentText();
  cmbPort_->clear();
  cmbPort_->addItem(Name("auto"));
  for (const auto& port : engine_.SerialPorts()) {
    cmbPort_->addItem(QString::fromStdString(port.path));
    cmbPort_->setItemData(cmbPort_->count() - 1, QString::fromStdString(port.label), Qt::ToolTipRole);
  }
  if (!text.isEmpty() || cmbPort_->count() == 0) cmbPort_->setEditText(text);
}

void frmLineEdit::ShowKind() {
  const bool sip = Kind() == LineKind::Sip;
  const bool modem = Kind() == LineKind::Modem;
  for (QWidget* row : std::initializer_list<QWidget*>{txtServer_, txtUser_, txtAuthUser_, password_row_,
                                                      cmbTransport_, txtListen_, spnRing_}) {
    form_->setRowVisible(row, sip);
  }
  form_->setRowVisible(port_row_, modem);
  form_->setRowVisible(port_hint_, modem);
  form_->setRowVisible(txtScript_, Kind() == LineKind::Sim);
}

void frmLineEdit::Changed() {
  test_->Clear();
  if (lblFault_->isHidden()) return;
  lblFault_->hide();
  form_->removeWidget(lblFault_);
}

LineKind frmLineEdit::Kind() const {
  return static_cast<LineKind>(cmbKind_->currentIndex());
}

TelephoneLine frmLineEdit::Line() const {
  auto line = line_;
  line.name = txtName_->text().trimmed().toStdString();
  line.kind = Kind();
  if (line.kind == LineKind::Modem) line.port = cmbPort_->currentText().trimmed().toStdString();
  if (line.kind == LineKind::Sim) line.script = txtScript_->text().trimmed().toStdString();
  if (line.kind != LineKind::Sip) return line;
  line.server = txtServer_->text().trimmed().toStdString();
  line.user = txtUser_->text().trimmed().toStdString();
  line.auth_user = txtAuthUser_->text().trimmed().toStdString();
  line.password = txtPassword_->text().toStdString();
  line.listen = txtListen_->text().trimmed().toStdString();
  line.ring_seconds = spnRing_->value();
  // An unchanged choice keeps what was written by hand in the file.
  if (cmbTransport_->currentIndex() != TransportIndex(line_)) {
    const auto& chosen = kTransports.at(static_cast<std::size_t>(cmbTransport_->currentIndex()));
    line.transport = chosen.transport;
    line.srtp = chosen.srtp;
  }
  return line;
}

std::optional<TelephoneLine> frmLineEdit::CheckedLine() {
  Changed();
  const auto line = Line();
  const auto fault = engine_.Check(line, index_);
  if (!fault) return line;
  ShowFault(*fault);
  return std::nullopt;
}

void frmLineEdit::ShowFault(const LineFault& fault) {
  auto* field = findChild<QWidget*>(QString::fromLatin1(fault.control.data()));
  auto* row = field == txtPassword_ ? password_row_ : field == cmbPort_ ? port_row_ : field;
  int at = 0;
  QFormLayout::ItemRole role{};
  form_->getWidgetPosition(row, &at, &role);
  form_->insertRow(at + 1, QString(), lblFault_);
  lblFault_->setText(QString::fromStdString(fault.text));
  // A form layout ignores the height of wrapped text. Fields are never narrower than kFieldWidth.
  lblFault_->setMinimumHeight(lblFault_->heightForWidth(kFieldWidth));
  lblFault_->show();
  field->setFocus();
}

void frmLineEdit::Ok() {
  const auto line = CheckedLine();
  if (!line) return;
  engine_.Put(*line, index_);
  accept();
}

}  // namespace orven
