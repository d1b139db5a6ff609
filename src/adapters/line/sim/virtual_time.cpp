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

}  // namespace

class VirtualTime::VirtualTimer : public Timer {
 public:
  VirtualTimer(VirtualTime& time, Task tick)
      : time_(time), job_(std::make_shared<Job>(Job{.task = std::move(tick), .repeats = true})) {}
  ~VirtualTimer() override { VirtualTimer::Stop(); }
  VirtualTimer(const VirtualTimer&) = delete;
  VirtualTimer& operator=(const VirtualTimer&) = delete;

  void Start(std::chrono::milliseconds interval) override {
    ++job_->start;
    job_->interval = interval;
    enabled_ = true;
    time_.Queue(interval, job_);
  }
  void Stop() override {
    ++job_->start;
    enabled_ = false;
  }
  bool Enabled() const override { return enabled_; }

 private:
  VirtualTime& time_;
  std::shared_ptr<Job> job_;
  bool enabled_ = false;
};

void VirtualTime::After(std::chrono::milliseconds delay, Task task) {
  Queue(delay, std::make_shared<Job>(Job{.task = std::move(task)}));
}

std::unique_ptr<Timer> VirtualTime::MakeTimer(Task tick) {
  return std::make_unique<VirtualTimer>(*this, std::move(tick));
}

void VirtualTime::Queue(std::chrono::milliseconds delay, std::shared_ptr<Job> job) {
  const auto start = job->start;
  due_.push({now_ + std::max(delay, std::chrono::milliseconds(0)), order_++, start, std::move(job)});
}

void VirtualTime::RunNext() {
  // The queue gives only const access to its top; the job is taken out before the element goes.
  const Due due = std::move(const_cast<Due&>(due_.top()));
  due_.pop();
  now_ = due.at;
  if (due.start != due.job->start) return;
  if (due.job->repeats) Queue(due.job->interval, due.job);
  due.job->task();
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
