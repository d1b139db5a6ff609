// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <exception>
#include <functional>

namespace orven {

/// Runs what may take long (a copy onto a slow disk) away from the user-interface thread, one piece of
/// work after the other.
class Background {
 public:
  using Work = std::function<void()>;
  /// Takes what the work has thrown, or nullptr.
  using Done = std::function<void(std::exception_ptr failure)>;

  virtual ~Background() = default;

  /// Runs `work` on another thread, then `done` on the user-interface thread. User-interface thread.
  virtual void Run(Work work, Done done) = 0;
};

}  // namespace orven
