// SPDX-License-Identifier: GPL-3.0-or-later
#include <QAbstractButton>
#include <QCheckBox>
#include <QLineEdit>
#include <QStyleFactory>
#include <optional>

#include "screenshots/pictures.h"
#include "setup/frmSetup.h"
#include "support/desk/desk.h"
#include "support/scripted_lines.h"
#include "support/scripted_own_caller.h"

namespace orven::test {
namespace {

void Type(const QWidget& window, const char* field, const QString& text) {
  window.findChild<QLineEdit*>(QLatin1String(field))->setText(text);
}

void Click(const QWidget& window, const char* button) {
  window.findChild<QAbstractButton*>(QLatin1String(button))->click();
}

}  // namespace

bool MakeSetup(const QString& folder, const QByteArray& name) {
  QApplication::setStyle(QStyleFactory::create(QStringLiteral("Fusion")));
  if (name.endsWith("dark")) QApplication::setPalette(DarkPalette());
  const auto path = [&](const char* page) {
    return folder + QStringLiteral("/setup_") + QLatin1String(page) + QString::fromLatin1(name.mid(5)) +
           QStringLiteral(".png");
  };
  Desk desk("\"Pass\"=\"471108\"\n\"pMailTo\"=\"0\"\n");
  desk.Start();
  auto& machine = desk.Machine();
  ScriptedLines lines;
  ScriptedOwnCaller caller;
  frmSetup window(nullptr);
  SetupAssistant engine(machine.ForSetupAssistant(
                            lines, [] { return true; }, [](CreatorTab) {}, caller),
                        window);
  window.Attach(engine);
  engine.Open(SetupPage::Telephone);
  Type(window, "txtUser", QStringLiteral("620"));
  Type(window, "txtPassword", QStringLiteral("only a picture"));
  Click(window, "cmdNext");
  lines.done({false,
              "The server 192.168.1.1 refuses the login (401 Unauthorized): the user \"620\" or the "
              "password is wrong."});
  if (!Save({Shown(window)}, path("telephone"))) return false;
  Click(window, "cmdNext");
  const auto done = lines.done;  // the assistant forgets its test
  done({true, "The server 192.168.1.1 accepts the account 620."});
  if (!Save({Shown(window)}, path("greeting"))) return false;
  Click(window, "cmdNext");
  Click(window, "chkSendToMail");
  Type(window, "txtSendToMail", QStringLiteral("anna@example.org"));
  Type(window, "txtSMTP", QStringLiteral("mail.example.org"));
  if (!Save({Shown(window)}, path("away"))) return false;
  lines.states = {{lines.configured.lines.front().name, "Registered"}};
  Click(window, "cmdNext");
  machine.call.serial = 1;
  machine.call.state = CallState::Recording;
  machine.call.ring_count_text = "4";
  Click(window, "cmdCall");
  using enum OwnCallerNews::Kind;
  for (const auto kind : {Answered, Greeting, Beep, Spoken}) caller.news({kind});
  const bool saved = Save({Shown(window)}, path("ready"));
  machine.call.state = CallState::Idle;
  return saved;
}

}  // namespace orven::test
