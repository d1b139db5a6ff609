// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <string>

namespace orven {

/// Which of "Answer Now", "Drop Call" and "Do Nothing" the caller view shows, with their icons.
enum class CallerCommands { None, WithoutAnswer, All };

/// The window `frmMSG` as the caller view moves and fills it. Distances in twips (15 to a pixel).
class CallerViewWindow {
 public:
  virtual ~CallerViewWindow() = default;

  /// Height of the whole window, loaded or not.
  virtual std::int32_t Height() const = 0;

  /// Puts its upper edge at `top`, counted from the upper edge of the screen that has the main window.
  virtual void MoveTo(std::int32_t top) = 0;

  /// Shows it, empty and with its three commands, above all windows, without taking the focus.
  virtual void Load() = 0;

  /// Takes it away.
  virtual void Unload() = 0;

  virtual void ShowCommands(CallerCommands shown) = 0;

  virtual void ShowStatus(const std::string& text) = 0;  ///< lblStatus
  virtual void ShowRing(const std::string& text) = 0;    ///< lblMsgRingNum
  virtual void ShowCaller(const std::string& name, const std::string& number) = 0;
  virtual void ShowTime(const std::string& date, const std::string& time) = 0;
  virtual void ShowMessagePath(const std::string& path) = 0;  ///< empty for none
};

/// What a person does in the caller view.
class CallerViewClicks {
 public:
  virtual ~CallerViewClicks() = default;
  virtual void AnswerNow() = 0;
  virtual void Drop() = 0;
  virtual void DoNothing() = 0;
  virtual void Close() = 0;
};

}  // namespace orven
