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
constexpr std::int32_t kShownAbove = -20;    ///< counts as fully open
constexpr std::int32_t kSnapDistance = 100;  ///< the rest of the way is one step
constexpr std::int32_t kGoneButFor = 30;     ///< counts as closed

/// The sum; RuntimeError 6 ("Overflow") when it does not fit.
std::int32_t Sum(std::int64_t left, std::int64_t right) {
  const auto sum = left + right;
  if (sum < std::numeric_limits<std::int32_t>::min() || sum > std::numeric_limits<std::int32_t>::max()) {
    throw RuntimeError(ErrorNumber::Overflow);
  }
  return static_cast<std::int32_t>(sum);
}

}  // namespace

CallerView::CallerView(EventLoop& loop, CallerViewWindow& window, Commands commands)
    : window_(window),
      commands_(std::move(commands)),
      Timer1(loop.MakeTimer([this] { Timer1_Timer(); })),
      tmrAutoClose(loop.MakeTimer([this] { tmrAutoClose_Timer(); })) {}

void CallerView::ViewCallViewer(bool animate, std::int16_t speed, bool auto_close, std::int16_t seconds) {
  if (loaded_) return;
  loaded_ = true;
  mode_ = Mode::Open;
  auto_close_ = auto_close;
  auto_close_seconds_ = seconds;
  animate_ = animate;
  if (animate) speed_ = speed;
  slid_ = 0;
  SetProp();
  if (animate) Timer1->Start(kSlideInterval);
  window_.Load();
  if (!animate) MoveTo(0);
}

void CallerView::SetProp() {
  MoveTo(-window_.Height());
  if (!auto_close_) return;
  tmrAutoClose->Start(kClockInterval);
  close_limit_ = auto_close_seconds_;
  close_ticks_ = 0;
}

void CallerView::Timer1_Timer() {
  const auto trap = ErrorTrap::Silent();
  trap([&] {
    if (mode_ == Mode::Open) return SlideDown();
    if (mode_ != Mode::Close) return;
    if (top_ <= kGoneButFor - window_.Height()) return Unload();
    MoveTo(Sum(top_, -std::int64_t{Sum(speed_, kBaseStep)}));
  });
}

void CallerView::SlideDown() {
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

void CallerView::tmrAutoClose_Timer() {
  if (close_ticks_ < close_limit_) {
    ++close_ticks_;
    return;
  }
  close_ticks_ = 0;
  Close();
}

void CallerView::Close() {
  if (!loaded_) return;
  animate_ ? SlideUp() : Unload();
}

void CallerView::SlideUp() {
  mode_ = Mode::Close;
  if (!Timer1->Enabled()) Timer1->Start(kSlideInterval);
}

void CallerView::Unload() {
  if (!loaded_) return;
  Timer1->Stop();
  tmrAutoClose->Stop();
  mode_ = Mode::Still;
  loaded_ = false;
  window_.Unload();
}

void CallerView::MoveTo(std::int32_t top) {
  top_ = top;
  window_.MoveTo(top);
}

void CallerView::ActAndClose(const std::function<void()>& command) {
  ErrorTrap::Silent()(command);
  Close();
}

}  // namespace orven
