// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>

#include "notify/caller_view.h"
#include "platform/notifications.h"

namespace orven {

/// Stands in for the caller view's window where a program cannot place one (Wayland): a notification that
/// says who calls, with "Answer Now" and "Drop Call". It goes with the call, whose own notification follows.
/// User-interface thread.
class CallerNotice : public CallerViewWindow {
 public:
  explicit CallerNotice(Notifications& desktop) : desktop_(desktop) {}

  /// Receives the clicks; may be null.
  void SetClicks(CallerViewClicks* clicks) { clicks_ = clicks; }

  // CallerViewWindow
  std::int32_t Height() const noexcept override { return 0; }
  void MoveTo(std::int32_t /*top*/) noexcept override {}
  void Load() noexcept override;
  void Unload() noexcept override;
  void ShowCommands(CallerCommands shown) noexcept override;
  void ShowStatus(const Words& /*text*/) noexcept override {}
  void ShowRing(const Words& /*text*/) noexcept override {}
  void ShowCall(const Call& call) noexcept override;

 private:
  void Show();
  Notification::Button Command(const char* caption, void (CallerViewClicks::*click)());

  Notifications& desktop_;
  CallerViewClicks* clicks_ = nullptr;
  CallerCommands commands_ = CallerCommands::None;
  std::string name_, number_;
  Notifications::Id id_ = 0;
};

}  // namespace orven
