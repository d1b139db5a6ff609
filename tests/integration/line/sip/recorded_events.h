// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <mutex>
#include <string>
#include <vector>

#include "platform/line_driver.h"

namespace orven::test {

/// Texts that one thread writes down and another waits for.
class Notes {
 public:
  void Add(const std::string& text) {
    const std::lock_guard lock(mutex_);
    texts_.push_back(text);
    told_.notify_all();
  }

  /// True as soon as `text` has been written, false when it is not in time.
  bool Wait(const std::string& text, std::chrono::milliseconds limit = std::chrono::seconds(10)) {
    std::unique_lock lock(mutex_);
    return told_.wait_for(lock, limit, [&] { return std::ranges::count(texts_, text) > 0; });
  }

  std::vector<std::string> All() {
    const std::lock_guard lock(mutex_);
    return texts_;
  }

  /// Forgets what has been told: a new line begins to count anew.
  void Clear() {
    const std::lock_guard lock(mutex_);
    texts_.clear();
  }

 private:
  std::mutex mutex_;
  std::condition_variable told_;
  std::vector<std::string> texts_;
};

/// Writes down what a line tells, one text an event ("Ring 1 2"), and lets a test wait for it.
class RecordedEvents : public LineDriverEvents, public Notes {
 public:
  void Offered(CallNumber call) override { Add("Offered", call); }
  void Ring(CallNumber call, std::int32_t count) override { Add("Ring", call, std::to_string(count)); }
  void CallerId(CallNumber call, const std::string& name, const std::string& number) override {
    Add("CallerId", call, name + "|" + number);
  }
  void RequestDone(std::int32_t request, std::int32_t result) override {
    Add("RequestDone", request, std::to_string(result));
  }
  void Connected(CallNumber call) override { Add("Connected", call); }
  void Digit(CallNumber call, char digit) override { Add("Digit", call, {digit}); }
  void Disconnected(CallNumber call) override { Add("Disconnected", call); }
  void Idle(CallNumber call) override { Add("Idle", call); }

  /// The keys told so far, in order.
  std::string Digits() {
    std::string digits;
    for (const std::string& event : All()) {
      if (event.starts_with("Digit ")) digits += event.back();
    }
    return digits;
  }

 private:
  template <typename Number>
  void Add(const std::string& what, Number number, const std::string& more = "") {
    Notes::Add(what + " " + std::to_string(number) + (more.empty() ? "" : " " + more));
  }
};

}  // namespace orven::test
