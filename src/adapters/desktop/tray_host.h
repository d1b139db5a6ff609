// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QDBusPendingCallWatcher>
#include <QDBusServiceWatcher>
#include <functional>
#include <memory>

namespace orven {

/// Whether the session's message bus has a host for tray icons (org.kde.StatusNotifierWatcher, the
/// StatusNotifierItem protocol). Asks without waiting, because a panel that hangs must not keep the
/// program from its telephone. Needs a QCoreApplication; user-interface thread.
class TrayHost {
 public:
  enum class Answer {
    Pending,  ///< none yet: the host has just been asked, hangs, or is being restarted
    Present,
    Absent,  ///< nor is there one when there is no message bus
  };

  /// `on_change` is called when the answer becomes another one, by the event loop and never by this
  /// constructor.
  explicit TrayHost(std::function<void()> on_change);

  Answer Current() const { return answer_; }

 private:
  void Ask();
  void Take(const QDBusPendingCall& call);
  void Become(Answer answer);

  std::function<void()> on_change_;
  Answer answer_ = Answer::Absent;
  QDBusServiceWatcher owner_;
  std::unique_ptr<QDBusPendingCallWatcher> question_;
};

}  // namespace orven
