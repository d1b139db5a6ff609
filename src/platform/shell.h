// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "base/words.h"

namespace orven {

/// The pictures that the notification area can show for the program.
enum class NotifyIconPicture {
  MainWindow,  ///< the main window's icon: the line is open
  LineOff,
  LineTrouble,      ///< calls cannot come in
  PicSysTryNothing  ///< blank
};

/// The notification-icon record NOTIFYICONDATA in its first, 88-byte form.
struct NotifyIconData {
  static constexpr std::size_t kTipCharacters = 64;

  std::uint32_t size = 88;
  std::uintptr_t window = 0;  ///< handle of the window that gets the mouse messages
  std::uint32_t id = 1;
  std::uint32_t flags = 7;               ///< NIF_MESSAGE, NIF_ICON and NIF_TIP
  std::uint32_t callback_message = 512;  ///< WM_MOUSEMOVE
  NotifyIconPicture icon = NotifyIconPicture::MainWindow;
  std::string tip;  ///< kTipCharacters bytes, filled up with NUL
  Words text;       ///< what the tip says, for a desktop that shows it in the user's language
};

/// Requests of Shell_NotifyIcon.
enum class NotifyRequest : std::uint32_t { Add = 0, Modify = 1 };  // NIM_ADD, NIM_MODIFY

/// Names and values of environment variables.
using Environment = std::vector<std::pair<std::string, std::string>>;

/// The desktop's shell. User-interface thread; nothing waits.
class Shell {
 public:
  virtual ~Shell() = default;

  /// Adds the program's icon to the notification area or changes it. False when that fails: an existing
  /// icon cannot be added again, a missing one cannot be changed.
  virtual bool NotifyIcon(NotifyRequest request, const NotifyIconData& data) = 0;

  /// Whether this desktop has a notification area now. That may change at any time. True without a display:
  /// nothing could bring back a minimised window either.
  virtual bool HasNotificationArea() const = 0;

  /// Opens a document (native path) or a web address with the desktop's program for it, like the
  /// "Open" verb. False when there is no such document or program.
  virtual bool Open(const std::string& target) = 0;

  /// Starts `command` (a program and its arguments in one line; double quotes keep an argument
  /// together, also an empty one) as a separate process, without a shell, and does not wait for it.
  /// The process has this one's environment and the variables of `added`.
  /// `window_style` is 0 for a hidden window, 1 for a normal one and 2 for a minimised one, both with the
  /// focus, where the platform supports that. Throws RuntimeError when it cannot be started: 5 for an empty
  /// command, 53 for a missing program, 70 for one that may not be executed; the text names it.
  virtual void Run(const std::string& command, std::int32_t window_style, const Environment& added = {}) = 0;
};

/// Virtual keys of the mouse's physical buttons.
enum MouseKey : std::int32_t {
  kLeftButton = 1,   ///< VK_LBUTTON
  kRightButton = 2,  ///< VK_RBUTTON
};

/// The current state of the mouse. User-interface thread.
class Mouse {
 public:
  virtual ~Mouse() = default;

  /// The user has swapped the buttons, and programs have to handle that themselves.
  virtual bool ButtonsSwapped() const = 0;

  virtual bool IsDown(MouseKey button) const = 0;
};

}  // namespace orven
