// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <span>

namespace orven {
/// Detects in the received audio that the caller has hung up, which many lines signal in no other way: busy
/// and congestion tones and the dial tone (ITU-T E.180 supplement 2) of -10 to -30 dBm0, and a minute of
/// silence. Hears a busy tone of any timing within four bursts, a dial tone within 3 s. Voices, music and
/// touch tones do not trigger it. Not thread-safe.
class HangUpDetector {
 public:
  /// `heard` is called at most once, inside Listen, with what was heard, as a text for the log.
  explicit HangUpDetector(std::function<void(const char*)> heard);
  ~HangUpDetector();

  /// 8000 samples a second.
  void Listen(std::span<const std::int16_t> samples);

 private:
  class Impl;
  std::unique_ptr<Impl> impl_;
};

}  // namespace orven
