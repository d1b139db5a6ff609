// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <deque>
#include <mutex>
#include <optional>
#include <utility>

namespace orven {

/// Carries values from any threads to the one that takes them, in order.
template <class Value>
class Mailbox {
 public:
  void Put(Value value) {
    const std::lock_guard lock(mutex_);
    values_.push_back(std::move(value));
  }

  /// The oldest value; nothing when none waits.
  std::optional<Value> Take() {
    const std::lock_guard lock(mutex_);
    if (values_.empty()) return std::nullopt;
    std::optional<Value> oldest(std::move(values_.front()));
    values_.pop_front();
    return oldest;
  }

 private:
  std::mutex mutex_;
  std::deque<Value> values_;  ///< guarded by mutex_
};

}  // namespace orven
