// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <optional>
#include <span>

namespace orven::emulator {

/// Reports silence in received sound: 's' when there has never been anything else, 'q' when it follows
/// sound; once each time.
class SilenceWatch {
 public:
  SilenceWatch() = default;
  /// `samples` of silence are reported, 8000 a second; 0: never.
  explicit SilenceWatch(std::int64_t samples) : enough_(samples) {}

  std::optional<char> Put(std::span<const std::int16_t> samples);

 private:
  std::int64_t enough_ = 0;
  std::int64_t silent_ = 0;
  bool heard_ = false;
};

}  // namespace orven::emulator
