// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>

#include "base/words.h"
#include "platform/event_loop.h"
#include "records/call.h"

namespace orven {

/// Which of "Answer Now", "Drop Call" and "Do Nothing" the caller view shows, with their icons.
enum class CallerCommands { None, WithoutAnswer, All };

/// The window `frmMSG` as the engine sees it. Distances in twips (15 per pixel).
class CallerViewWindow {
 public:
  virtual ~CallerViewWindow() = default;

  /// Height of the whole window, loaded or not.
  virtual std::int32_t Height() const noexcept = 0;

  /// Moves its upper edge to `top`, measured from the upper edge of the screen that shows the main window.
  virtual void MoveTo(std::int32_t top) noexcept = 0;

  /// Shows it, empty and with its three commands, on top of all windows and without the focus.
  virtual void Load() noexcept = 0;

  virtual void Unload() noexcept = 0;

  virtual void ShowCommands(CallerCommands shown) noexcept = 0;

  virtual void ShowStatus(const Words& text) noexcept = 0;  ///< lblStatus
  virtual void ShowRing(const Words& text) noexcept = 0;    ///< lblMsgRingNum
  /// Its names, time and message path; any of them may be empty.
  virtual void ShowCall(const Call& call) noexcept = 0;
};

/// The clicks that the caller view reports.
class CallerViewClicks {
 public:
  virtual ~CallerViewClicks() = default;
  virtual void AnswerNow() = 0;
  virtual void Drop() = 0;
  virtual void DoNothing() = 0;
  virtual void Close() = 0;
};

/// The caller view: slides in at the top of the screen, shows the caller, and slides out after a delay or a
/// click. At most one is open. Distances in twips. An error ends the step and is not logged. User-interface
/// thread.
class CallerView : public CallerViewClicks {
 public:
  /// What its commands do to the ringing call.
  struct Commands {
    std::function<void()> answer;
    std::function<void()> drop;
    std::function<void()> do_nothing;
  };

  CallerView(EventLoop& loop, CallerViewWindow& window, Commands commands);

  bool IsOpen() const { return loaded_; }
  /// Open, but sliding out.
  bool IsClosing() const { return loaded_ && mode_ == Mode::Close; }
  /// Closes it at once.
  void Unload();
  /// Opens it, unless it is open. `speed` in twips a tick, `seconds` until it closes by itself.
  void ViewCallViewer(bool animate, std::int16_t speed, bool auto_close, std::int16_t seconds);
  /// Shows the commands for a ringing call.
  void ShowControl() { window_.ShowCommands(CallerCommands::All); }
  /// The call was answered: hides "Answer Now".
  void HideAnswer() { window_.ShowCommands(CallerCommands::WithoutAnswer); }
  /// Hides all commands: the call is over.
  void HideControl() { window_.ShowCommands(CallerCommands::None); }
  /// The call's state in a few words: "New Call".
  void ShowMessage(const Words& text) { window_.ShowStatus(text); }
  /// The number of rings: "Ring : 3".
  void ShowRing(const Words& text) { window_.ShowRing(text); }
  /// Name, number, date, time and message of the call.
  void ShowCall(const Call& call) { window_.ShowCall(call); }

  // Clicks.
  void AnswerNow() override { ActAndClose(commands_.answer); }
  void Drop() override { ActAndClose(commands_.drop); }
  void DoNothing() override { ActAndClose(commands_.do_nothing); }
  void Close() override;

 private:
  enum class Mode { Still, Open, Close };

  void ActAndClose(const std::function<void()>& command);
  void SetProp();
  void SlideUp();
  void Timer1_Timer();
  void SlideDown();
  void tmrAutoClose_Timer();
  void MoveTo(std::int32_t top);

  CallerViewWindow& window_;
  Commands commands_;
  std::unique_ptr<Timer> Timer1;
  std::unique_ptr<Timer> tmrAutoClose;
  bool loaded_ = false;
  Mode mode_ = Mode::Still;
  std::int32_t speed_ = 0;
  bool animate_ = false;
  bool auto_close_ = false;
  std::int32_t auto_close_seconds_ = 0;
  std::int32_t top_ = 0;
  std::int32_t slid_ = 0;         ///< distance so far, while opening
  std::int32_t close_ticks_ = 0;  ///< seconds on the auto-close clock
  std::int32_t close_limit_ = 0;
};

}  // namespace orven
