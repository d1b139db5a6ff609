// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <span>

namespace orven {
/// Hears in the received sound that the caller has hung up: many lines signal it by nothing else. The busy
/// and congestion tones and the dial tone (ITU-T E.180 supplement 2), and a minute of silence. Tones of -10
/// to -30 dBm0: the busy tone within four bursts, whatever its times are, the dial tone within 3 s. Voices,
/// music and touch tones are none. Not for use by several threads.
class HangUpDetector {
 public:
  /// `heard` is called once at most, within Listen, with what was heard, in words for the log.
  explicit HangUpDetector(std::function<void(const char*)> heard);
  ~HangUpDetector();

  /// 8000 samples a second.
  void Listen(std::span<const std::int16_t> samples);

 private:
  class Impl;
  std::unique_ptr<Impl> impl_;
};

}  // namespace orven
