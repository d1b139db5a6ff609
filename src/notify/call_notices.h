// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <deque>
#include <functional>

#include "core/settings_store.h"
#include "notify/tray_icon.h"
#include "platform/notifications.h"
#include "records/call.h"
#include "records/call_list.h"

namespace orven {

/// The desktop's notifications of new messages and missed calls. One is taken away when its call is read or
/// deleted. Passes the list's counts on to the tray and to the program's icon. User-interface thread.
class CallNotices : public CallCountsView {
 public:
  /// Older ones are taken away, so that a night of calls does not fill the screen.
  static constexpr std::size_t kMost = 10;

  struct Parts {
    Notifications& desktop;
    TrayIcon& tray;
    SettingsStore& store;
    const CallList& list;
    /// The user has the main window before him, and so the call.
    std::function<bool()> in_front;
    /// The buttons. The call may be deleted by then.
    std::function<void(const CallRow& call)> play;
    std::function<void(const CallRow& call)> open;
  };

  explicit CallNotices(Parts parts) : parts_(std::move(parts)) {}

  /// A call is over and filed, if it could be; the settings `NotifyMessage` and `NotifyMissed` decide.
  void Tell(const Call& call);

  void MakeSysTryBaloon(std::int32_t total, std::int32_t new_calls) override;

 private:
  struct Notice {
    Notifications::Id id;
    CallRow call;
  };

  CallRow RowOf(const Call& call) const;
  bool IsSettled(const CallRow& call) const;
  Notification Describe(const Call& call, const CallRow& row);
  std::function<void()> Press(const CallRow& call, const std::function<void(const CallRow&)>& act);

  Parts parts_;
  std::deque<Notice> notices_;  ///< the oldest first
};

}  // namespace orven
