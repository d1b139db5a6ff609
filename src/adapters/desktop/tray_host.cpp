// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/desktop/tray_host.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusReply>
#include <QDBusVariant>
#include <limits>
#include <utility>

namespace orven {
namespace {

constexpr const char* kWatcher = "org.kde.StatusNotifierWatcher";

/// The bus answers in the place of a host that goes, so that no question stays open for nothing.
constexpr int kNoTimeout = std::numeric_limits<int>::max();  // milliseconds; DBUS_TIMEOUT_INFINITE

QDBusMessage Question() {
  auto message = QDBusMessage::createMethodCall(kWatcher, "/StatusNotifierWatcher",
                                                "org.freedesktop.DBus.Properties", "Get");
  message << QString(kWatcher) << QStringLiteral("IsStatusNotifierHostRegistered");
  message.setAutoStartService(false);
  return message;
}

}  // namespace

TrayHost::TrayHost(std::function<void()> on_change) : on_change_(std::move(on_change)) {
  const auto bus = QDBusConnection::sessionBus();
  if (!bus.isConnected()) return;
  owner_.setConnection(bus);
  owner_.setWatchMode(QDBusServiceWatcher::WatchForOwnerChange);
  owner_.addWatchedService(kWatcher);
  QObject::connect(&owner_, &QDBusServiceWatcher::serviceOwnerChanged, &owner_,
                   [this](const QString&, const QString&, const QString& owner) {
                     // Who goes without an answer is awaited: panels are started again after a crash.
                     if (!owner.isEmpty() || answer_ != Answer::Pending) Ask();
                   });
  answer_ = Answer::Pending;
  Ask();
}

void TrayHost::Ask() {
  question_ = std::make_unique<QDBusPendingCallWatcher>(
      QDBusConnection::sessionBus().asyncCall(Question(), kNoTimeout));
  QObject::connect(question_.get(), &QDBusPendingCallWatcher::finished, question_.get(),
                   [this](QDBusPendingCallWatcher* call) { Take(*call); });
}

void TrayHost::Take(const QDBusPendingCall& call) {
  const QDBusReply<QDBusVariant> reply = call;
  if (reply.error().type() == QDBusError::NoReply) return;  // it has gone
  Become(reply.isValid() && reply.value().variant().toBool() ? Answer::Present : Answer::Absent);
}

void TrayHost::Become(Answer answer) {
  if (std::exchange(answer_, answer) != answer) on_change_();
}

}  // namespace orven
