// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

namespace orven {

/// Keeps the computer awake. User-interface thread; nothing waits.
class SleepGuard {
 public:
  virtual ~SleepGuard() = default;

  /// Holds the computer awake, or lets it sleep again. A failure is reported once; the program goes on.
  virtual void Hold(bool awake) = 0;
};

}  // namespace orven
