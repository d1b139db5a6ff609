// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>

#include "notify/caller_view_window.h"
#include "platform/event_loop.h"
#include "telephony/call_effects.h"

namespace orven {

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
