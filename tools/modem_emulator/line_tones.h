// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <chrono>
#include <cstdint>
#include <deque>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace orven::emulator {
/// One or two sine waves for some time, in 8000 samples a second; 0 Hz is none.
struct ToneStep {
  double first = 0;   ///< Hz
  double second = 0;  ///< Hz
  std::chrono::milliseconds duration{0};
};

/// The frequencies of a key (ITU-T Q.23); those of silence for what is none.
ToneStep KeyTone(char key, std::chrono::milliseconds duration);

/// Tones one after another.
class ToneSequence {
 public:
  explicit ToneSequence(std::vector<ToneStep> steps, bool again = false);

  /// Adds the next samples to `out`.
  void Add(std::span<std::int16_t> out);
  bool Over() const { return steps_.empty(); }

 private:
  std::deque<ToneStep> steps_;
  bool again_;  ///< from the beginning, for ever
  std::int64_t position_ = 0;
};

/// The tones with which a network tells that nobody is there any more (ITU-T E.180, supplement 2: those of
/// North America, like the caller ids).
enum class NetworkTone { Busy, Dial, Silence };

/// What comes over the line from the other side.
class CallerAudio {
 public:
  /// From now on; silence afterwards.
  void Say(std::vector<std::int16_t> samples);
  /// Whether there is something left to say.
  bool Speaking() const { return spoken_ < speech_.size(); }
  /// From now on.
  void Press(char key, std::chrono::milliseconds duration);
  /// For ever, in place of everything else.
  void Tone(NetworkTone tone);
  void Reset() { *this = CallerAudio(); }

  /// The next samples.
  void Take(std::span<std::int16_t> out);

 private:
  std::vector<std::int16_t> speech_;
  std::size_t spoken_ = 0;
  std::vector<ToneSequence> tones_;
};

/// What stands behind "+VTS=": "[933,,150]" two frequencies and a duration in 10 ms, "{5,20}" a key and a
/// duration, "5" a key of `usual` duration. Nothing when it is none of it.
std::optional<std::vector<ToneStep>> ToneList(const std::string& text, std::chrono::milliseconds usual);

}  // namespace orven::emulator
