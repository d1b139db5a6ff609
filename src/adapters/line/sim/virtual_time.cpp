// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/line/sim/virtual_time.h"

#include <algorithm>
#include <array>
#include <cstdio>

namespace orven {
namespace {

template <class... Numbers>
std::string Print(const char* format, Numbers... numbers) {
  std::array<char, 64> buffer{};
  std::snprintf(buffer.data(), buffer.size(), format, numbers...);
  return buffer.data();
}

/// Ticks through the loop's own queue. A tick that was queued before Stop finds another generation.
class VirtualTimer : public Timer {
 public:
  VirtualTimer(EventLoop& loop, EventLoop::Task tick)
      : loop_(loop), state_(std::make_shared<State>(State{std::move(tick)})) {}
  ~VirtualTimer() override { VirtualTimer::Stop(); }
  VirtualTimer(const VirtualTimer&) = delete;
  VirtualTimer& operator=(const VirtualTimer&) = delete;

  void Start(std::chrono::milliseconds interval) override {
    ++state_->generation;
    state_->enabled = true;
    Schedule(loop_, state_, interval, state_->generation);
  }
  void Stop() override {
    ++state_->generation;
    state_->enabled = false;
  }
  bool Enabled() const override { return state_->enabled; }

 private:
  struct State {
    EventLoop::Task tick;
    std::uint64_t generation = 0;
    bool enabled = false;
  };

  static void Schedule(EventLoop& loop, const std::shared_ptr<State>& state,
                       std::chrono::milliseconds interval, std::uint64_t generation) {
    loop.After(interval, [&loop, state, interval, generation] {
      if (state->generation != generation) return;
      Schedule(loop, state, interval, generation);
      state->tick();
    });
  }

  EventLoop& loop_;
  std::shared_ptr<State> state_;
};

}  // namespace

void VirtualTime::After(std::chrono::milliseconds delay, Task task) {
  due_.push({now_ + std::max(delay, std::chrono::milliseconds(0)), order_++, std::move(task)});
}

std::unique_ptr<Timer> VirtualTime::MakeTimer(Task tick) {
  return std::make_unique<VirtualTimer>(*this, std::move(tick));
}

void VirtualTime::RunNext() {
  // The queue gives only const access to its top; the task is taken out before the element goes.
  auto task = std::move(const_cast<Due&>(due_.top()).task);
  now_ = due_.top().at;
  due_.pop();
  task();
}

void VirtualTime::RunFor(std::chrono::milliseconds duration) {
  RunUntil([] { return false; }, duration);
}

bool VirtualTime::RunUntil(const std::function<bool()>& done, std::chrono::milliseconds limit) {
  const auto end = now_ + std::max(limit, std::chrono::milliseconds(0));
  while (!done()) {
    if (due_.empty() || due_.top().at > end) {
      now_ = end;
      return done();
    }
    RunNext();
  }
  return true;
}

std::chrono::year_month_day VirtualTime::LocalDay(WallTime at) const {
  return std::chrono::floor<std::chrono::days>(at);
}

Clock::WallTime VirtualTime::Midnight(std::chrono::year_month_day day) const {
  return std::chrono::sys_days(day);
}

std::string VirtualTime::DateText(WallTime at) const {
  const auto day = LocalDay(at);
  return Print("%u/%u/%d", static_cast<unsigned>(day.month()), static_cast<unsigned>(day.day()),
               static_cast<int>(day.year()));
}

std::string VirtualTime::TimeText(WallTime at) const {
  const auto seconds = std::chrono::floor<std::chrono::seconds>(at - Midnight(LocalDay(at)));
  const std::chrono::hh_mm_ss time(seconds);
  return Print("%02d:%02d:%02d", static_cast<int>(time.hours().count()),
               static_cast<int>(time.minutes().count()), static_cast<int>(time.seconds().count()));
}

}  // namespace orven
