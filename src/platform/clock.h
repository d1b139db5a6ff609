// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <chrono>
#include <string>

namespace orven {

/// Time for the engine: a monotonic clock, the wall clock, and both as text in the user's format.
/// Any thread may call; nothing here fails.
class Clock {
 public:
  using WallTime = std::chrono::system_clock::time_point;

  virtual ~Clock() = default;

  /// The monotonic clock: milliseconds since a fixed moment, unaffected by changes of the wall clock.
  virtual std::chrono::milliseconds Uptime() const = 0;

  /// The wall clock.
  virtual WallTime Now() const = 0;

  /// `at` as a date in the user's short format and time zone, for example "12/31/2003".
  virtual std::string DateText(WallTime at) const = 0;

  /// `at` as a time in the user's format and time zone, always with seconds and without the zone's
  /// name, for example "14:05:07".
  virtual std::string TimeText(WallTime at) const = 0;

  /// The calendar day of `at` in the user's time zone.
  virtual std::chrono::year_month_day LocalDay(WallTime at) const = 0;

  /// The moment at which `day` begins in the user's time zone.
  virtual WallTime Midnight(std::chrono::year_month_day day) const = 0;
};

}  // namespace orven
