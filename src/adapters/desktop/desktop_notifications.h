// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QDBusMessage>
#include <QDBusPendingCall>
#include <QDBusServiceWatcher>
#include <QObject>
#include <QStringList>
#include <functional>
#include <map>
#include <optional>

#include "platform/notifications.h"

namespace orven {

/// The session bus's notifications (org.freedesktop.Notifications 1.2) and the count on the icon
/// (com.canonical.Unity.LauncherEntry). A server that is missing, hangs or restarts blocks nothing: what it
/// has not answered is shown by the next one, and so is what is urgent. Takes its notifications and the count
/// away at its end. Needs a QCoreApplication; user-interface thread.
class DesktopNotifications final : public QObject, public Notifications {
  Q_OBJECT

 public:
  /// `shown` translates the texts. Without a `display`, nothing is ever shown.
  DesktopNotifications(Translation shown, bool display);
  ~DesktopNotifications() override;

  Id Show(Notification notification, Id replaces) override;
  void Withdraw(Id id) override;
  void ShowUnread(std::int32_t count) override;

 private slots:
  void Hear(const QDBusMessage& signal);

 private:
  /// A notification that is to be shown, or to be taken away, and how far the server is with it.
  struct Entry {
    Notification content;
    bool withdrawn = false;
    bool sent = false;   ///< `content` was sent
    bool asked = false;  ///< the answer is pending
    quint32 number = 0;  ///< the server's, once it has answered
  };

  void HearOfOwner(const QString& owner);
  void AskAbilities();
  void Bring(Id id);
  void BringAll();
  void Send(Id id, Entry& entry);
  void Answered(Id id, const QDBusPendingCall& call);
  QString Text(const Words& words) const { return QString::fromStdString(shown_(words)); }
  void Call(const QDBusMessage& message, std::function<void(const QDBusPendingCall& call)> done);
  void Press(std::map<Id, Entry>::iterator entry, const QString& key);

  const Translation shown_;
  const bool on_;  ///< there is a display and a bus
  QDBusServiceWatcher owner_;
  QString server_;                        ///< its unique name; empty until it has answered
  std::optional<QStringList> abilities_;  ///< of that server
  bool asking_abilities_ = false;
  std::map<Id, Entry> entries_;
  Id last_ = 0;
  std::int32_t unread_ = 0;
};

}  // namespace orven
