// SPDX-License-Identifier: GPL-3.0-or-later
#include "widgets/password_field.h"

#include <QAction>
#include <QCoreApplication>
#include <algorithm>

#include "widgets/controls.h"
#include "widgets/icons.h"

namespace orven {
namespace {

struct PasswordField {
  Q_DECLARE_TR_FUNCTIONS(PasswordField)
};

bool CanBeKeyed(const QString& password) {
  return std::ranges::all_of(password, [](QChar key) { return key == u'#' || (key >= u'0' && key <= u'9'); });
}

QString HintAbout(const QString& password) {
  if (password.isEmpty())
    return PasswordField::tr("Without a password anyone who keys * hears the messages.");
  if (!CanBeKeyed(password)) return PasswordField::tr("A telephone can key the digits 0 to 9 and # only.");
  return PasswordField::tr("Enter it while the greeting plays, then press *");
}

}  // namespace

void HidePassword(QLineEdit& field) {
  field.setEchoMode(QLineEdit::Password);
  auto* show = field.addAction(ThemeIcon("password-show-on"), QLineEdit::TrailingPosition);
  show->setObjectName(QStringLiteral("actShowPass"));
  show->setText(PasswordField::tr("Show the password"));
  show->setToolTip(show->text());
  show->setCheckable(true);
  QObject::connect(show, &QAction::toggled, &field, [&field, show](bool on) {
    field.setEchoMode(on ? QLineEdit::Normal : QLineEdit::Password);
    show->setIcon(ThemeIcon(on ? "password-show-off" : "password-show-on"));
  });
}

QLabel* MakePasswordHint(QLineEdit& field, QWidget* parent) {
  auto* hint = MakeText("lblPassHint", parent, HintAbout(field.text()));
  QObject::connect(&field, &QLineEdit::textChanged, hint,
                   [hint](const QString& password) { hint->setText(HintAbout(password)); });
  return hint;
}

}  // namespace orven
