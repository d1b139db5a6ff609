// SPDX-License-Identifier: GPL-3.0-or-later
#include <QStyleFactory>

#include "options/frmLineEdit.h"
#include "options/frmLines.h"
#include "screenshots/pictures.h"
#include "support/desk/desk.h"
#include "support/scripted_lines.h"

namespace orven::test {
namespace {

TelephoneLine Account(const char* name, const char* user, const char* server, const char* transport) {
  TelephoneLine line;
  line.name = name;
  line.user = user;
  line.server = server;
  line.password = "only a picture";
  line.transport = transport;
  return line;
}

ScriptedLines ThreeLines() {
  ScriptedLines lines;
  TelephoneLine modem;
  modem.name = "USB modem";
  modem.kind = LineKind::Modem;
  modem.port = "/dev/serial/by-id/usb-Voice_Modem_0001-if00";
  lines.configured.lines = {Account("Home router", "620", "192.168.178.1", "udp"),
                            Account("Office", "anna.lindqvist", "sip.example.org", "tls"), modem};
  lines.states = {{"Home router", "Registered"},
                  {"Office", "Another line is chosen"},
                  {"USB modem", "Another line is chosen"}};
  lines.ports = {{modem.port, modem.port}};
  return lines;
}

}  // namespace

bool MakeLines(const QString& folder, const QByteArray& name) {
  QApplication::setStyle(QStyleFactory::create(QStringLiteral("Fusion")));
  if (name.endsWith("dark")) QApplication::setPalette(DarkPalette());
  Desk desk;
  desk.Start();
  auto lines = ThreeLines();
  auto& machine = desk.Machine();
  LinesDialog engine({lines, desk.dialogs, machine.log, machine.store, machine.settings, nullptr});
  if (name == "lines_modem") {
    frmLineEdit modem(engine, 2, nullptr);
    modem.findChild<QAbstractButton*>(QStringLiteral("cmdTest"))->click();
    lines.done(
        {true, Words("A voice modem answers at %1 (its sound has 16 bits).").Arg(lines.ports[0].path)});
    return Save({Shown(modem)}, folder + QStringLiteral("/lines_modem.png"));
  }
  frmLines list(engine, nullptr);
  list.findChild<QAbstractButton*>(QStringLiteral("cmdTest"))->click();
  lines.done(
      {true, "Calls can come in at 0.0.0.0:5060, and the server 192.168.178.1 accepts the account 620."});
  QList<QPixmap> pictures{Shown(list)};
  frmLineEdit fresh(engine, std::nullopt, nullptr);
  fresh.findChild<QLineEdit*>(QStringLiteral("txtUser"))->setText(QStringLiteral("620"));
  fresh.findChild<QAbstractButton*>(QStringLiteral("cmdOK"))->click();
  pictures << Shown(fresh);
  frmLineEdit account(engine, 1, nullptr);
  account.findChild<QAbstractButton*>(QStringLiteral("cmdTest"))->click();
  lines.done(
      {false,
       "The server sip.example.org refuses the login (401 Unauthorized): the user \"anna.lindqvist\" or the "
       "password is wrong."});
  pictures << Shown(account);
  return Save(pictures, folder + u'/' + QString::fromLatin1(name) + QStringLiteral(".png"));
}

}  // namespace orven::test
