// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>

#include "core/activity_log.h"
#include "notify/line_health.h"
#include "platform/event_loop.h"
#include "platform/shell.h"
#include "records/call_list.h"

namespace orven {

/// The program's icon in the notification area: its picture shows how the line is, its tip the counts, and it
/// blinks after a call that was missed. Every change is an add request followed by a modify request, so that
/// the icon returns after a restart of the shell. User-interface thread.
class TrayIcon : public CallCountsView {
 public:
  /// `window` returns the handle of the main window.
  TrayIcon(EventLoop& loop, Shell& shell, SystemLog& log, std::function<std::uintptr_t()> window);

  void MakeSysTryBaloon(std::int32_t total, std::int32_t new_calls) override;

  /// Shows how the line is from now on.
  void ShowLine(const LineHealth& line);

  /// Enables `tmrSysTryBlink`.
  void StartBlinking();
  /// Disables it; the icon keeps its picture.
  void StopBlinking();
  bool Blinking() const;

  /// Shows the empty picture, because the program ends.
  void ShowNothing();

  /// A mouse message of the shell, which arrives as the X coordinate (twips) of a mouse move: the left button
  /// restores the main window, the right one pops up the menu `mnuSystry`.
  void MouseMove(double x, double twips_per_pixel, const std::function<void()>& restore,
                 const std::function<void()>& pop_up_menu) const;

 private:
  void Blink();
  void Send(NotifyIconPicture picture);

  Shell& shell_;
  SystemLog& log_;
  std::function<std::uintptr_t()> window_;
  NotifyIconData record_;
  NotifyIconPicture line_ = NotifyIconPicture::LineOff;
  bool blink_phase_ = false;
  std::unique_ptr<Timer> tmrSysTryBlink_;
};

}  // namespace orven
