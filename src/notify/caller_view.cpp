// SPDX-License-Identifier: GPL-3.0-or-later
#include "notify/caller_view.h"

#include <limits>

#include "base/runtime_error.h"
#include "core/error_trap.h"

namespace orven {
namespace {

using namespace std::chrono_literals;

constexpr auto kSlideInterval = 10ms;
constexpr auto kClockInterval = 1s;

constexpr std::int32_t kBaseStep = 50;       ///< twips a tick, before the user's speed
constexpr std::int32_t kShownAbove = -20;    ///< from here on it counts as down
constexpr std::int32_t kSnapDistance = 100;  ///< the last stretch is taken at once
constexpr std::int32_t kGoneButFor = 30;     ///< this little of it counts as gone

/// The sum, if it is one that fits; RuntimeError 6 ("Overflow") otherwise.
std::int32_t Sum(std::int64_t left, std::int64_t right) {
  const auto sum = left + right;
  if (sum < std::numeric_limits<std::int32_t>::min() || sum > std::numeric_limits<std::int32_t>::max()) {
    throw RuntimeError(ErrorNumber::Overflow);
  }
  return static_cast<std::int32_t>(sum);
}

}  // namespace

SlidingCallerView::SlidingCallerView(EventLoop& loop, CallerViewWindow& window, Commands commands)
    : window_(window),
      commands_(std::move(commands)),
      Timer1(loop.MakeTimer([this] { Timer1_Timer(); })),
      tmrAutoClose(loop.MakeTimer([this] { tmrAutoClose_Timer(); })) {}

void SlidingCallerView::ViewCallViewer(bool animate, std::int16_t speed, bool auto_close,
                                       std::int16_t seconds) {
  if (loaded_) return;
  const auto trap = ErrorTrap::Silent();
  loaded_ = true;
  mode_ = Mode::Open;
  auto_close_ = auto_close;
  auto_close_seconds_ = seconds;
  animate_ = animate;
  if (animate) speed_ = speed;
  slid_ = 0;
  trap([&] { SetProp(); });
  if (animate) Timer1->Start(kSlideInterval);
  trap([&] { window_.Load(); });
  if (!animate) trap([&] { MoveTo(0); });
}

void SlidingCallerView::SetProp() {
  MoveTo(-window_.Height());
  if (!auto_close_) return;
  tmrAutoClose->Start(kClockInterval);
  close_limit_ = auto_close_seconds_;
  close_ticks_ = 0;
}

void SlidingCallerView::Timer1_Timer() {
  const auto trap = ErrorTrap::Silent();
  trap([&] {
    if (mode_ == Mode::Open) return SlideDown();
    if (mode_ != Mode::Close) return;
    if (top_ <= kGoneButFor - window_.Height()) return Unload();
    MoveTo(Sum(top_, -std::int64_t{Sum(speed_, kBaseStep)}));
  });
}

void SlidingCallerView::SlideDown() {
  if (top_ >= kShownAbove) {
    Timer1->Stop();
    mode_ = Mode::Still;
    slid_ = 0;
    return;
  }
  const auto step = Sum(speed_, kBaseStep);
  slid_ = Sum(slid_, step);
  MoveTo(window_.Height() <= Sum(slid_, kSnapDistance) ? 0 : Sum(top_, step));
}

void SlidingCallerView::tmrAutoClose_Timer() {
  if (close_ticks_ < close_limit_) {
    ++close_ticks_;
    return;
  }
  close_ticks_ = 0;
  Close();
}

void SlidingCallerView::Close() {
  if (!loaded_) return;
  animate_ ? SlideUp() : Unload();
}

void SlidingCallerView::SlideUp() {
  mode_ = Mode::Close;
  if (!Timer1->Enabled()) Timer1->Start(kSlideInterval);
}

void SlidingCallerView::Unload() {
  if (!loaded_) return;
  const auto trap = ErrorTrap::Silent();
  Timer1->Stop();
  tmrAutoClose->Stop();
  mode_ = Mode::Still;
  loaded_ = false;
  trap([&] { window_.Unload(); });
}

void SlidingCallerView::MoveTo(std::int32_t top) {
  top_ = top;
  window_.MoveTo(top);
}

void SlidingCallerView::ShowControl() {
  const auto trap = ErrorTrap::Silent();
  trap([&] { window_.ShowCommands(CallerCommands::All); });
}

void SlidingCallerView::HideAnswer() {
  const auto trap = ErrorTrap::Silent();
  trap([&] { window_.ShowCommands(CallerCommands::WithoutAnswer); });
}

void SlidingCallerView::HideControl() {
  const auto trap = ErrorTrap::Silent();
  trap([&] { window_.ShowCommands(CallerCommands::None); });
}

void SlidingCallerView::ShowMessage(const std::string& text) {
  const auto trap = ErrorTrap::Silent();
  trap([&] { window_.ShowStatus(text); });
}

void SlidingCallerView::ShowRing(const std::string& text) {
  const auto trap = ErrorTrap::Silent();
  trap([&] { window_.ShowRing(text); });
}

void SlidingCallerView::ShowCall(const Call& call) {
  const auto trap = ErrorTrap::Silent();
  trap([&] { window_.ShowCaller(call.caller_name, call.caller_number); });
  trap([&] { window_.ShowTime(call.date, call.time); });
  trap([&] { window_.ShowMessagePath(call.message_path); });
}

void SlidingCallerView::AnswerNow() {
  const auto trap = ErrorTrap::Silent();
  trap([&] { commands_.answer(); });
  Close();
}

void SlidingCallerView::Drop() {
  const auto trap = ErrorTrap::Silent();
  trap([&] { commands_.drop(); });
  Close();
}

void SlidingCallerView::DoNothing() {
  const auto trap = ErrorTrap::Silent();
  trap([&] { commands_.do_nothing(); });
  Close();
}

}  // namespace orven
