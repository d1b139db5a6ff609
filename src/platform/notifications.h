// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "base/words.h"

namespace orven {

/// A short message that the desktop shows beside the program's windows.
struct Notification {
  struct Button {
    Words caption;
    std::function<void()> press;  ///< called at most once; the notification is gone then
  };

  Words title;
  Words text;                     ///< one or two sentences; shown as plain text
  bool urgent = false;            ///< stays until the user closes it
  std::function<void()> click{};  ///< the notification itself was clicked; it is gone then
  std::vector<Button> buttons{};  ///< a desktop may show none of them
};

/// The desktop's notifications (org.freedesktop.Notifications). Never waits for the desktop; without a
/// desktop that shows notifications nothing happens. User-interface thread.
class Notifications {
 public:
  using Id = std::uint32_t;  ///< of this program's notifications, from 1; 0: none

  virtual ~Notifications() = default;

  /// Shows `notification`, in place of the one with the id `replaces` if that is still shown.
  virtual Id Show(Notification notification, Id replaces = 0) = 0;

  /// Takes a notification away that is no longer true. One that is gone is ignored.
  virtual void Withdraw(Id id) = 0;

  /// The number of unheard messages, on the program's icon where the desktop shows one.
  virtual void ShowUnread(std::int32_t count) = 0;
};

}  // namespace orven
