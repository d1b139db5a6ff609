// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/desktop/colour_scheme.h"

#include <QApplication>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusReply>
#include <QDBusVariant>
#include <QPalette>

namespace orven {
namespace {

constexpr const char* kPortal = "org.freedesktop.portal.Desktop";
constexpr const char* kPath = "/org/freedesktop/portal/desktop";
constexpr const char* kSettings = "org.freedesktop.portal.Settings";

constexpr const char* kGroup = "org.freedesktop.appearance";
constexpr const char* kName = "color-scheme";

/// Of the values 0 (no preference), 1 and 2 (light).
constexpr uint kDark = 1;

bool QtFollows() {
  return qEnvironmentVariable("XDG_CURRENT_DESKTOP").contains(QLatin1String("KDE")) ||
         !qEnvironmentVariableIsEmpty("QT_QPA_PLATFORMTHEME");
}

bool IsDark(const QPalette& palette) {
  return palette.color(QPalette::Window).lightness() < palette.color(QPalette::WindowText).lightness();
}

/// Text on it has at least a contrast of 7 to 1, disabled text of 3 to 1.
QPalette DarkPalette() {
  const QColor text(240, 240, 240);
  const QColor pale(150, 150, 150);
  QPalette dark(QColor(64, 64, 64), QColor(48, 48, 48));  // buttons, windows
  for (const auto role :
       {QPalette::WindowText, QPalette::Text, QPalette::ButtonText, QPalette::ToolTipText}) {
    dark.setColor(role, text);
    dark.setColor(QPalette::Disabled, role, pale);
  }
  dark.setColor(QPalette::Base, QColor(34, 34, 34));
  dark.setColor(QPalette::AlternateBase, QColor(42, 42, 42));
  dark.setColor(QPalette::ToolTipBase, QColor(64, 64, 64));
  dark.setColor(QPalette::PlaceholderText, pale);
  dark.setColor(QPalette::Highlight, QColor(26, 95, 180));
  dark.setColor(QPalette::HighlightedText, Qt::white);
  dark.setColor(QPalette::Link, QColor(120, 174, 237));
  dark.setColor(QPalette::LinkVisited, QColor(192, 150, 220));
  return dark;
}

/// The answer is a variant in a variant.
uint SchemeIn(QVariant value) {
  while (value.canConvert<QDBusVariant>()) value = value.value<QDBusVariant>().variant();
  return value.toUInt();
}

}  // namespace

ColourScheme::ColourScheme(bool display) {
  auto bus = QDBusConnection::sessionBus();
  if (!display || QtFollows() || !bus.isConnected()) return;
  // With the service's name, Qt would wait for the bus.
  bus.connect({}, kPath, kSettings, "SettingChanged", this, SLOT(Hear(QDBusMessage)));
  auto question = QDBusMessage::createMethodCall(kPortal, kPath, kSettings, "Read");
  question << QString(kGroup) << QString(kName);
  auto* watcher = new QDBusPendingCallWatcher(bus.asyncCall(question), this);
  connect(watcher, &QDBusPendingCallWatcher::finished, this, [this](QDBusPendingCallWatcher* call) {
    call->deleteLater();
    const QDBusReply<QDBusVariant> reply = *call;
    if (reply.isValid()) Use(SchemeIn(reply.value().variant()));
  });
}

void ColourScheme::Hear(const QDBusMessage& signal) {
  const auto& arguments = signal.arguments();
  if (arguments.size() == 3 && arguments[0] == QLatin1String(kGroup) &&
      arguments[1] == QLatin1String(kName)) {
    Use(SchemeIn(arguments[2]));
  }
}

void ColourScheme::Use(uint scheme) {
  const bool dark = scheme == kDark;
  if (dark == dark_ || (dark && IsDark(QApplication::palette()))) return;
  dark_ = dark;
  QApplication::setPalette(dark ? DarkPalette() : QPalette());
}

}  // namespace orven
