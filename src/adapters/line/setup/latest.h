// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <mutex>
#include <utility>

namespace orven {

/// The latest value that one thread has set; any thread may read it.
template <class Value>
class Latest {
 public:
  void Take(Value value) {
    const std::lock_guard lock(mutex_);
    value_ = std::move(value);
  }
  Value Get() const {
    const std::lock_guard lock(mutex_);
    return value_;
  }

 private:
  mutable std::mutex mutex_;
  Value value_;
};

}  // namespace orven
