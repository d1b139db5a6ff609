// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>

#include "platform/event_loop.h"
#include "telephony/call_effects.h"

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

/// The caller view: slides in at the top of the screen, shows who calls, and leaves after a while or a
/// click. At most one at a time. Distances in twips. User-interface thread; an error in it reaches
/// nobody.
class SlidingCallerView : public CallerView, public CallerViewClicks {
 public:
  /// What its commands do to the ringing call.
  struct Commands {
    std::function<void()> answer;
    std::function<void()> drop;
    std::function<void()> do_nothing;
  };

  SlidingCallerView(EventLoop& loop, CallerViewWindow& window, Commands commands);

  bool IsOpen() const override { return loaded_; }
  bool IsClosing() const override { return loaded_ && mode_ == Mode::Close; }
  void Unload() override;
  void ViewCallViewer(bool animate, std::int16_t speed, bool auto_close, std::int16_t seconds) override;
  void ShowControl() override;
  void HideAnswer() override;
  void HideControl() override;
  void ShowMessage(const std::string& text) override;
  void ShowRing(const std::string& text) override;
  void ShowCall(const Call& call) override;

  // Clicks.
  void AnswerNow() override;
  void Drop() override;
  void DoNothing() override;
  void Close() override;

 private:
  enum class Mode { Still, Open, Close };

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
  std::int32_t slid_ = 0;         ///< while opening
  std::int32_t close_ticks_ = 0;  ///< seconds on the auto-close clock
  std::int32_t close_limit_ = 0;
};

}  // namespace orven
