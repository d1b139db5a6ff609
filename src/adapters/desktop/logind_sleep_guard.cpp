// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/desktop/logind_sleep_guard.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusReply>
#include <utility>

namespace orven {

void LogindSleepGuard::Hold(bool awake) {
  if (std::exchange(wanted_, awake) == awake) return;
  if (!awake) {
    question_.reset();  // a lock that is on its way is given back unseen
    lock_ = {};
    return;
  }
  auto request = QDBusMessage::createMethodCall("org.freedesktop.login1", "/org/freedesktop/login1",
                                                "org.freedesktop.login1.Manager", "Inhibit");
  request << QStringLiteral("sleep") << QStringLiteral("ORVEN") << QStringLiteral("The telephone line is on")
          << QStringLiteral("block");
  question_ = std::make_unique<QDBusPendingCallWatcher>(QDBusConnection::systemBus().asyncCall(request));
  QObject::connect(question_.get(), &QDBusPendingCallWatcher::finished, question_.get(),
                   [this](QDBusPendingCallWatcher* call) { Take(*call); });
}

void LogindSleepGuard::Take(const QDBusPendingCall& call) {
  const QDBusReply<QDBusUnixFileDescriptor> reply = call;
  if (reply.isValid()) {
    lock_ = reply.value();
  } else if (const auto report = std::exchange(report_, nullptr)) {
    report("The computer cannot be kept awake: " + reply.error().message().toStdString());
  }
}

}  // namespace orven
