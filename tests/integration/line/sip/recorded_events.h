// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <string>
#include <vector>

#include "platform/line_driver.h"

namespace orven::test {

/// Writes down what a line tells, one text an event ("Ring 1 2"), and lets a test wait for it.
class RecordedEvents : public LineDriverEvents {
 public:
  void Offered(CallNumber call) override { Add("Offered " + std::to_string(call)); }
  void Ring(CallNumber call, std::int32_t count) override {
    Add("Ring " + std::to_string(call) + " " + std::to_string(count));
  }
  void CallerId(CallNumber call, const std::string& name, const std::string& number) override {
    Add("CallerId " + std::to_string(call) + " " + name + "|" + number);
  }
  void RequestDone(std::int32_t request, std::int32_t result) override {
    Add("RequestDone " + std::to_string(request) + " " + std::to_string(result));
  }
  void Connected(CallNumber call) override { Add("Connected " + std::to_string(call)); }
  void Digit(CallNumber call, char digit) override { Add("Digit " + std::to_string(call) + " " + digit); }
  void Disconnected(CallNumber call) override { Add("Disconnected " + std::to_string(call)); }
  void Idle(CallNumber call) override { Add("Idle " + std::to_string(call)); }

  /// True as soon as `event` has been told, false when it is not within ten seconds.
  bool Wait(const std::string& event, std::chrono::milliseconds limit = std::chrono::seconds(10)) {
    std::unique_lock lock(mutex_);
    return told_.wait_for(lock, limit, [&] { return Has(event); });
  }

  std::vector<std::string> All() {
    const std::lock_guard lock(mutex_);
    return events_;
  }

  /// The keys told so far, in order.
  std::string Digits() {
    std::string digits;
    for (const std::string& event : All()) {
      if (event.starts_with("Digit ")) digits += event.back();
    }
    return digits;
  }

  /// True as soon as so many keys have been told.
  bool WaitForDigits(std::size_t count) {
    std::unique_lock lock(mutex_);
    return told_.wait_for(lock, std::chrono::seconds(10), [&] {
      std::size_t told = 0;
      for (const std::string& event : events_) told += event.starts_with("Digit ") ? 1 : 0;
      return told >= count;
    });
  }

 private:
  bool Has(const std::string& event) const {
    for (const std::string& one : events_) {
      if (one == event) return true;
    }
    return false;
  }
  void Add(std::string event) {
    const std::lock_guard lock(mutex_);
    events_.push_back(std::move(event));
    told_.notify_all();
  }

  std::mutex mutex_;
  std::condition_variable told_;
  std::vector<std::string> events_;
};

}  // namespace orven::test
