// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QDBusPendingCallWatcher>
#include <QDBusUnixFileDescriptor>
#include <functional>
#include <memory>
#include <string>

#include "platform/sleep_guard.h"

namespace orven {

/// Holds an inhibitor lock of systemd-logind against "sleep", in the mode "block". The kernel gives it back
/// when this process ends. Needs a QCoreApplication; user-interface thread.
class LogindSleepGuard final : public SleepGuard {
 public:
  /// `report` is called once, with the first failure, by the event loop.
  explicit LogindSleepGuard(std::function<void(const std::string& problem)> report)
      : report_(std::move(report)) {}

  void Hold(bool awake) override;

 private:
  void Take(const QDBusPendingCall& call);

  std::function<void(const std::string&)> report_;
  bool wanted_ = false;
  QDBusUnixFileDescriptor lock_;
  std::unique_ptr<QDBusPendingCallWatcher> question_;
};

}  // namespace orven
