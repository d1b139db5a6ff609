// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/desktop/desktop_notifications.h"

#include <QDBusConnection>
#include <QDBusPendingCallWatcher>
#include <QDBusReply>
#include <QVariantMap>
#include <algorithm>
#include <limits>
#include <utility>

#include "adapters/desktop/application.h"

namespace orven {
namespace {

constexpr const char* kService = "org.freedesktop.Notifications";
constexpr const char* kPath = "/org/freedesktop/Notifications";

constexpr const char* kDesktopEntry = "orven";  // the installed orven.desktop, and the icon's name
constexpr const char* kClick = "default";       // the key of a click on the notification itself

// Expiration times of Notify.
constexpr int kAsUsual = -1;
constexpr int kNever = 0;

// Urgency levels.
constexpr uchar kNormal = 1;
constexpr uchar kCritical = 2;

/// No timeout: if the server exits, the bus replies with an error.
constexpr int kNoTimeout = std::numeric_limits<int>::max();  // milliseconds; DBUS_TIMEOUT_INFINITE

QDBusMessage Request(const char* member) {
  return QDBusMessage::createMethodCall(kService, kPath, kService, member);
}

QDBusMessage OwnerRequest() {
  return QDBusMessage::createMethodCall("org.freedesktop.DBus", "/org/freedesktop/DBus",
                                        "org.freedesktop.DBus", "GetNameOwner")
         << QString(kService);
}

void SendUnread(std::int32_t count) {
  auto update = QDBusMessage::createSignal("/com/canonical/unity/launcherentry/orven",
                                           "com.canonical.Unity.LauncherEntry", "Update");
  update << QStringLiteral("application://%1.desktop").arg(kDesktopEntry)
         << QVariantMap{{"count", qlonglong{count}}, {"count-visible", count > 0}};
  QDBusConnection::sessionBus().send(update);
}

}  // namespace

DesktopNotifications::DesktopNotifications(Translation shown, bool display)
    : shown_(std::move(shown)), on_(display && QDBusConnection::sessionBus().isConnected()) {
  if (!on_) return;
  auto bus = QDBusConnection::sessionBus();
  owner_.setConnection(bus);
  owner_.setWatchMode(QDBusServiceWatcher::WatchForOwnerChange);
  owner_.addWatchedService(kService);
  connect(&owner_, &QDBusServiceWatcher::serviceOwnerChanged, this,
          [this](const QString&, const QString&, const QString& owner) { HearOfOwner(owner); });
  // With the service's name, Qt would wait for the bus.
  for (const char* signal : {"ActionInvoked", "ActivationToken", "NotificationClosed"}) {
    bus.connect({}, kPath, kService, signal, this, SLOT(Hear(QDBusMessage)));
  }
}

DesktopNotifications::~DesktopNotifications() {
  while (!entries_.empty()) {
    const auto number = entries_.begin()->second.number;
    if (number != 0) QDBusConnection::sessionBus().send(Request("CloseNotification") << number);
    entries_.erase(entries_.begin());
  }
  if (on_ && unread_ > 0) SendUnread(0);
}

Notifications::Id DesktopNotifications::Show(Notification notification, Id replaces) {
  const bool replaced = entries_.contains(replaces) && !entries_.at(replaces).withdrawn;
  const Id id = replaced ? replaces : ++last_;
  if (!on_) return id;
  auto& entry = entries_[id];
  entry.content = std::move(notification);
  entry.sent = false;
  abilities_ ? Bring(id) : AskAbilities();
  return id;
}

void DesktopNotifications::Withdraw(Id id) {
  const auto entry = entries_.find(id);
  if (entry == entries_.end()) return;
  entry->second.withdrawn = true;
  Bring(id);
}

void DesktopNotifications::ShowUnread(std::int32_t count) {
  if (std::exchange(unread_, count) != count && on_) SendUnread(count);
}

void DesktopNotifications::Call(const QDBusMessage& message,
                                std::function<void(const QDBusPendingCall&)> done) {
  auto* watcher =
      new QDBusPendingCallWatcher(QDBusConnection::sessionBus().asyncCall(message, kNoTimeout), this);
  connect(watcher, &QDBusPendingCallWatcher::finished, this,
          [done = std::move(done)](QDBusPendingCallWatcher* call) {
            call->deleteLater();
            done(*call);
          });
}

/// What a server does with markup and buttons is asked before the first text is sent to it. The question
/// starts it if need be, so its own name is asked afterwards: not every version of Qt tells who has answered.
void DesktopNotifications::AskAbilities() {
  if (std::exchange(asking_abilities_, true)) return;
  Call(Request("GetCapabilities"), [this](const QDBusPendingCall& call) {
    asking_abilities_ = false;
    const QDBusReply<QStringList> reply = call;
    if (!reply.isValid()) return;  // there is none, or it has exited: the next one is asked
    asking_abilities_ = true;
    Call(OwnerRequest(), [this, abilities = reply.value()](const QDBusPendingCall& owner_call) {
      asking_abilities_ = false;
      const QDBusReply<QString> owner = owner_call;
      if (!owner.isValid()) return;
      server_ = owner.value();
      abilities_ = abilities;
      BringAll();
    });
  });
}

void DesktopNotifications::BringAll() {
  for (Id id = 1; id <= last_; ++id) {
    if (entries_.contains(id)) Bring(id);
  }
}

/// Makes the server show what the entry says, one request at a time.
void DesktopNotifications::Bring(Id id) {
  auto& entry = entries_.at(id);
  if (entry.asked) return;
  if (entry.withdrawn) {
    if (entry.number != 0) QDBusConnection::sessionBus().send(Request("CloseNotification") << entry.number);
    entries_.erase(id);
  } else if (!entry.sent && abilities_) {
    Send(id, entry);
  }
}

void DesktopNotifications::Send(Id id, Entry& entry) {
  const auto& content = entry.content;
  QStringList actions;
  if (abilities_->contains("actions")) {
    if (content.click) actions << kClick << QString();
    for (std::size_t i = 0; i < content.buttons.size(); ++i) {
      actions << QString::number(i) << Text(content.buttons[i].caption);
    }
  }
  auto text = Text(content.text);
  if (abilities_->contains("body-markup")) text = text.toHtmlEscaped();
  auto request = Request("Notify");
  request << QStringLiteral("ORVEN") << entry.number << QString(kDesktopEntry) << Text(content.title) << text
          << actions
          << QVariantMap{{"desktop-entry", kDesktopEntry},
                         {"urgency", QVariant::fromValue(content.urgent ? kCritical : kNormal)}}
          << (content.urgent ? kNever : kAsUsual);
  entry.sent = entry.asked = true;
  Call(request, [this, id](const QDBusPendingCall& call) { Answered(id, call); });
}

void DesktopNotifications::Answered(Id id, const QDBusPendingCall& call) {
  const auto found = entries_.find(id);
  if (found == entries_.end()) return;
  auto& entry = found->second;
  entry.asked = false;
  const QDBusReply<quint32> reply = call;
  if (reply.isValid()) entry.number = reply.value();
  if (reply.isValid() || entry.withdrawn) return Bring(id);
  entry.sent = false;  // it has exited: the next one shows it
}

/// Another server, or none, has the service's name: it knows nothing of what the former one shows.
void DesktopNotifications::HearOfOwner(const QString& owner) {
  if (owner == server_) return;
  server_.clear();
  abilities_.reset();
  std::erase_if(entries_, [](const auto& item) {
    const auto& entry = item.second;
    return entry.number != 0 && !entry.asked && (entry.withdrawn || !entry.content.urgent);
  });
  for (auto& [id, entry] : entries_) {
    if (std::exchange(entry.number, 0) != 0) entry.sent = false;
  }
  if (!owner.isEmpty() && !entries_.empty()) AskAbilities();
}

void DesktopNotifications::Hear(const QDBusMessage& signal) {
  const auto& arguments = signal.arguments();
  if (signal.service() != server_ || arguments.size() != 2) return;
  const auto number = arguments[0].toUInt();
  const auto entry = std::ranges::find_if(
      entries_, [number](const auto& item) { return number != 0 && item.second.number == number; });
  if (entry == entries_.end()) return;
  if (signal.member() == u"ActivationToken") return UseActivationToken(arguments[1].toString());
  if (signal.member() == u"ActionInvoked") return Press(entry, arguments[1].toString());
  // A request that is on its way makes it appear again.
  if (entry->second.asked) {
    entry->second.number = 0;
  } else {
    entries_.erase(entry);
  }
}

void DesktopNotifications::Press(std::map<Id, Entry>::iterator entry, const QString& key) {
  auto content = std::move(entry->second.content);
  Withdraw(entry->first);
  bool is_number = false;
  const auto index = key.toUInt(&is_number);
  if (key == QLatin1String(kClick) && content.click) content.click();
  if (is_number && index < content.buttons.size() && content.buttons[index].press) {
    content.buttons[index].press();
  }
}

}  // namespace orven
