// SPDX-License-Identifier: GPL-3.0-or-later
#include "options/frmLineEdit.h"

#include <QCheckBox>
#include <QHBoxLayout>
#include <QPushButton>
#include <QVBoxLayout>
#include <algorithm>
#include <array>
#include <string_view>

#include "widgets/controls.h"
#include "widgets/dialog_parts.h"
#include "widgets/translation.h"

namespace orven {
namespace {

constexpr int kFieldWidth = 360;  // pixels; shows most server and port names in full

struct Transport {
  const char* text;
  std::string_view transport;
  const char* srtp;  ///< as stored
};

constexpr std::array kTransports{
    Transport{QT_TRANSLATE_NOOP("orven::frmLineEdit", "Automatic (as the server's name says, else UDP)"),
              "auto", ""},
    Transport{QT_TRANSLATE_NOOP("orven::frmLineEdit", "UDP"), "udp", ""},
    Transport{QT_TRANSLATE_NOOP("orven::frmLineEdit", "TCP"), "tcp", ""},
    Transport{QT_TRANSLATE_NOOP("orven::frmLineEdit", "TLS with SRTP (encrypted)"), "tls", ""},
    Transport{QT_TRANSLATE_NOOP("orven::frmLineEdit", "TLS (sound not encrypted)"), "tls", "no"},
};

/// Encryption that was written by hand in the file belongs to the first entry with its transport, except that
/// TLS has an entry without it.
int TransportIndex(const TelephoneLine& line) {
  const bool plain_tls = line.transport == "tls" && line.srtp == "no";
  const auto found = std::ranges::find(kTransports, line.transport, &Transport::transport);
  return static_cast<int>(found - kTransports.begin()) + (plain_tls ? 1 : 0);
}

/// Nothing below cmdMore needs a look.
bool IsUsual(const TelephoneLine& line) {
  const TelephoneLine usual;
  return line.auth_user.empty() && line.proxy.empty() && line.tls_trust.empty() && line.srtp.empty() &&
         line.transport != "tcp" && line.transport != "tls" && line.listen == usual.listen &&
         line.ring_seconds == usual.ring_seconds;
}

}  // namespace

frmLineEdit::frmLineEdit(LinesDialog& engine, std::optional<std::size_t> index, QWidget* parent)
    : QDialog(parent), engine_(engine), index_(index), line_(index ? engine.At(*index) : engine.NewLine()) {
  SetUpDialog(*this, "frmLineEdit", index ? tr("Telephone Line") : tr("New Telephone Line"));
  auto* content = MakeChild<QWidget>();
  auto* rows = MakeFlat<QVBoxLayout>(content);
  form_ = MakeChild<QFormLayout>();
  rows->addLayout(form_);
  MakeFields(!index);
  test_ = MakeChild<frmLineTest>(
      engine_, [this] { return CheckedLine(); }, this);
  connect(test_, &frmLineTest::Tested, this, &frmLineEdit::ShowTested);
  rows->addWidget(test_);
  rows->addStretch();
  page_ = MakeChild<GrowingPage>(content, this);
  const auto buttons = MakeClosingButtons(*this);
  connect(buttons.cmdOK, &QPushButton::clicked, this, &frmLineEdit::Ok);
  auto* column = MakeChild<QVBoxLayout>(this);
  column->addWidget(page_);
  column->addLayout(buttons.row);
  Show(line_);
  for (auto* field : findChildren<QLineEdit*>()) {
    connect(field, &QLineEdit::textChanged, this, &frmLineEdit::Changed);
  }
  for (auto* list : findChildren<QComboBox*>()) {
    IgnoreStrayWheel(*list);
    connect(list, &QComboBox::currentIndexChanged, this, &frmLineEdit::Changed);
  }
  texts_.front().field->setFocus();
  texts_.front().field->selectAll();
}

void frmLineEdit::MakeFields(bool fresh) {
  AddText(&TelephoneLine::name, "txtName", tr("&Name:"), tr("The line's name in this program"));
  cmbKind_ = AddList("cmbKind", tr("&Kind:"));
  const auto add = [this](LineKind kind, const QString& text) {
    cmbKind_->addItem(text, static_cast<int>(kind));
  };
  add(LineKind::Sip, tr("SIP (Internet telephony)"));
  add(LineKind::Modem, tr("Modem"));
  if (line_.kind == LineKind::Sim) add(LineKind::Sim, tr("Simulation"));
  cmbKind_->setEnabled(fresh);
  MakeSection(LineKind::Sip, false, &frmLineEdit::MakeSipFields);
  MakeSection(LineKind::Sip, true, &frmLineEdit::MakeExpertFields);
  MakeSection(LineKind::Modem, false, &frmLineEdit::MakeModemFields);
  MakeSection(LineKind::Sim, false, &frmLineEdit::MakeSimFields);
  MakeFault();
  connect(cmbKind_, &QComboBox::currentIndexChanged, this, &frmLineEdit::ShowRows);
}

void frmLineEdit::MakeSection(LineKind kind, bool expert, void (frmLineEdit::*make)()) {
  const int first = form_->rowCount();
  section_ = kind;
  (this->*make)();
  for (int row = first; row < form_->rowCount(); ++row) {
    rows_.push_back({kind, expert, form_->itemAt(row, QFormLayout::FieldRole)->widget()});
  }
}

void frmLineEdit::MakeSipFields() {
  AddText(&TelephoneLine::server, "txtServer", tr("&Server:"),
          tr("The account's server: its name or address, perhaps with \":\" and a port; empty for calls "
             "that come directly to this computer"))
      ->setPlaceholderText(tr("sip.example.org, or the home router"));
  AddText(&TelephoneLine::user, "txtUser", tr("&User:"), tr("The account's name or telephone number"));
  MakePassword();
  MakeMore();
}

void frmLineEdit::MakeMore() {
  cmdMore_ = MakeNamed<QToolButton>("cmdMore", this);
  cmdMore_->setText(tr("&More"));
  cmdMore_->setToolTip(tr("What only some providers and networks need"));
  cmdMore_->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
  cmdMore_->setArrowType(Qt::RightArrow);
  cmdMore_->setAutoRaise(true);
  cmdMore_->setCheckable(true);
  form_->addRow(QString(), cmdMore_);
  connect(cmdMore_, &QToolButton::toggled, this, [this](bool open) {
    cmdMore_->setArrowType(open ? Qt::DownArrow : Qt::RightArrow);
    ShowRows();
    if (!open) page_->Fit();
  });
}

void frmLineEdit::MakeExpertFields() {
  AddText(&TelephoneLine::auth_user, "txtAuthUser", tr("&Login name:"),
          tr("Only if the server expects a login name other than the user"))
      ->setPlaceholderText(tr("the same as the user"));
  cmbTransport_ = AddList("cmbTransport", tr("T&ransport:"));
  cmbTransport_->setToolTip(tr("How the server is reached; the provider says which ones it supports"));
  for (const auto& transport : kTransports) cmbTransport_->addItem(tr(transport.text));
  AddText(&TelephoneLine::tls_trust, "txtTrust", tr("Trusted &certificates:"),
          tr("A PEM file of the certificates that the server may show with TLS; it is looked for in ORVEN's "
             "folder"))
      ->setPlaceholderText(tr("those that this computer trusts"));
  AddText(&TelephoneLine::proxy, "txtProxy", tr("Outbound pro&xy:"),
          tr("A server, perhaps with \":\" and a port, to which everything is sent instead of the account's "
             "server"))
      ->setPlaceholderText(tr("only if the provider names one"));
  MakeAddressForCalls();
  spnRing_ = MakeNamed<QSpinBox>("spnRing", this);
  spnRing_->setRange(1, 60);
  spnRing_->setSuffix(tr(" s"));
  spnRing_->setToolTip(tr("The time from ring to ring; the answering machine counts the rings"));
  IgnoreStrayWheel(*spnRing_);
  AddRow(tr("Time &between rings:"), spnRing_);
}

void frmLineEdit::MakeAddressForCalls() {
  AddText(&TelephoneLine::listen, "txtListen", tr("&Address for calls:"),
          tr("Where this computer waits for calls: a host and a port, such as 192.168.1.5:5060, "
             "[2001:db8::5]:5060 or "
             "pc.example.org:5060"));
  AddHint(
      tr("0.0.0.0:5060 is every network, *:5060 with IPv6, too, and 127.0.0.1:5060 this computer only. Or "
         "one of its "
         "addresses or names."));
}

void frmLineEdit::MakePassword() {
  auto* row = MakeRow();
  auto* field = AddText(&TelephoneLine::password, "txtPassword", tr("&Password:"), {}, row);
  field->setEchoMode(QLineEdit::Password);
  auto* shows = MakeNamed<QCheckBox>("chkShowPassword", tr("S&how"), row);
  shows->setToolTip(tr("Show the password"));
  row->layout()->addWidget(shows);
  connect(shows, &QCheckBox::toggled, this,
          [field](bool shown) { field->setEchoMode(shown ? QLineEdit::Normal : QLineEdit::Password); });
}

void frmLineEdit::MakeModemFields() {
  auto* row = MakeRow();
  cmbPort_ = AddList("cmbPort", tr("P&ort:"), row);
  cmbPort_->setEditable(true);
  cmbPort_->setToolTip(tr("The serial port of the modem"));
  auto* find = MakeButton("cmdFindPorts", tr("&Find"),
                          tr("Look for ports again, after a modem has been plugged in"), row);
  row->layout()->addWidget(find);
  connect(find, &QPushButton::clicked, this, &frmLineEdit::FillPorts);
  AddHint(tr("auto: the first voice modem that is found, on any port."));
}

/// Below the field that was added last.
void frmLineEdit::AddHint(const QString& text) {
  auto* hint = MakeChild<WholeText>("", this, kFieldWidth);
  hint->setText(text);
  form_->addRow(QString(), hint);
}

void frmLineEdit::MakeSimFields() {
  AddText(&TelephoneLine::script, "txtScript", tr("Scr&ipt:"),
          tr("A file that describes the calls to simulate"));
}

void frmLineEdit::MakeFault() {
  lblFault_ = MakeChild<WholeText>("lblFault", this, kFieldWidth);
  auto font = lblFault_->font();
  font.setBold(true);
  lblFault_->setFont(font);
  lblFault_->hide();
}

/// A row for a field and what stands on its right.
QWidget* frmLineEdit::MakeRow() {
  auto* row = MakeChild<QWidget>(this);
  MakeChild<QHBoxLayout>(row)->setContentsMargins(0, 0, 0, 0);
  return row;
}

QLineEdit* frmLineEdit::AddText(std::string TelephoneLine::*value, const char* name, const QString& label,
                                const QString& tip, QWidget* row) {
  auto* field = MakeNamed<QLineEdit>(name, row != nullptr ? row : this);
  field->setToolTip(tip);
  AddRow(label, field, row);
  texts_.push_back({field, value, section_});
  return field;
}

QComboBox* frmLineEdit::AddList(const char* name, const QString& label, QWidget* row) {
  auto* list = MakeNamed<QComboBox>(name, row != nullptr ? row : this);
  list->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
  AddRow(label, list, row);
  return list;
}

/// Without `row` the field is a row of its own. Below either there is a place for a fault.
void frmLineEdit::AddRow(const QString& label, QWidget* field, QWidget* row) {
  if (row != nullptr) static_cast<QHBoxLayout*>(row->layout())->addWidget(field, 1);
  auto* caption = MakeCaption(label, field);
  // A screen reader looks for the caption beside the field only.
  field->setAccessibleName(QString(label).remove(u'&').remove(u':'));
  auto* place = MakeChild<QWidget>(this);
  place->setMinimumWidth(kFieldWidth);
  MakeFlat<QVBoxLayout>(place)->addWidget(row != nullptr ? row : field);
  form_->addRow(caption, place);
}

void frmLineEdit::Show(const TelephoneLine& line) {
  for (const auto& text : texts_) text.field->setText(QString::fromStdString(line.*text.value));
  cmbKind_->setCurrentIndex(cmbKind_->findData(static_cast<int>(line.kind)));
  cmbTransport_->setCurrentIndex(TransportIndex(line));
  spnRing_->setValue(line.ring_seconds);
  cmbPort_->setEditText(QString::fromStdString(line.port));
  FillPorts();
  cmdMore_->setChecked(!IsUsual(line));
  ShowRows();
}

void frmLineEdit::FillPorts() {
  const auto text = cmbPort_->currentText();
  cmbPort_->clear();
  cmbPort_->addItem(QStringLiteral("auto"));
  for (const auto& port : engine_.SerialPorts()) {
    cmbPort_->addItem(QString::fromStdString(port.path));
    cmbPort_->setItemData(cmbPort_->count() - 1, QString::fromStdString(port.label), Qt::ToolTipRole);
  }
  if (!text.isEmpty() || cmbPort_->count() == 0) cmbPort_->setEditText(text);
}

void frmLineEdit::ShowRows() {
  for (const auto& row : rows_) {
    form_->setRowVisible(row.widget, row.kind == Kind() && (!row.expert || cmdMore_->isChecked()));
  }
}

void frmLineEdit::Changed() {
  test_->Clear();
  lblFault_->hide();
}

LineKind frmLineEdit::Kind() const {
  return static_cast<LineKind>(cmbKind_->currentData().toInt());
}

TelephoneLine frmLineEdit::Line() const {
  auto line = line_;
  line.kind = Kind();
  for (const auto& [field, value, kind] : texts_) {
    if (kind && *kind != line.kind) continue;
    const bool exact = value == &TelephoneLine::password;
    line.*value = (exact ? field->text() : field->text().trimmed()).toStdString();
  }
  if (line.kind == LineKind::Modem) line.port = cmbPort_->currentText().trimmed().toStdString();
  if (line.kind != LineKind::Sip) return line;
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

/// The place of this control, which is made visible.
QWidget* frmLineEdit::PlaceOf(QWidget* control) const {
  auto* place = control;
  while (form_->indexOf(place) < 0) place = place->parentWidget();
  if (!form_->isRowVisible(place)) cmdMore_->setChecked(true);
  return place;
}

QWidget* frmLineEdit::Named(std::string_view control) const {
  return findChild<QWidget*>(QLatin1String(control.data(), static_cast<qsizetype>(control.size())));
}

void frmLineEdit::ShowFault(const LineFault& fault) {
  auto* control = Named(fault.control);
  PlaceOf(control)->layout()->addWidget(lblFault_);
  lblFault_->setText(Shown(fault.text));
  lblFault_->show();
  control->setFocus();
  Announce(*lblFault_);
  page_->Reveal(*lblFault_);
}

void frmLineEdit::ShowTested(const LineTestResult& result) {
  if (!result.control.empty()) (void)PlaceOf(Named(result.control));
  page_->Reveal(*test_);
}

void frmLineEdit::Ok() {
  const auto line = CheckedLine();
  if (!line) return;
  engine_.Put(*line, index_);
  accept();
}

}  // namespace orven
