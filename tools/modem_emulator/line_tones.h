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
/// One or two sine waves of limited duration, 8000 samples a second; 0 Hz: absent.
struct ToneStep {
  double first = 0;   ///< Hz
  double second = 0;  ///< Hz
  std::chrono::milliseconds duration{0};
};

/// The tone of a key (ITU-T Q.23); silence for other characters.
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
  bool again_;  ///< repeats forever
  std::int64_t position_ = 0;
};

/// The tones of a network after the caller has hung up (ITU-T E.180, supplement 2, North America).
enum class NetworkTone { Busy, Dial, Silence };

/// The audio from the caller's side of the line.
class CallerAudio {
 public:
  /// Plays `samples` from now on, then silence.
  void Say(std::vector<std::int16_t> samples);
  /// Whether there is more to say.
  bool Speaking() const { return spoken_ < speech_.size(); }
  /// Adds the key's tone from now on.
  void Press(char key, std::chrono::milliseconds duration);
  /// Plays a tone forever, in place of everything else.
  void Tone(NetworkTone tone);
  void Reset() { *this = CallerAudio(); }

  /// The next samples.
  void Take(std::span<std::int16_t> out);

 private:
  std::vector<std::int16_t> speech_;
  std::size_t spoken_ = 0;
  std::vector<ToneSequence> tones_;
};

/// Parses the value of "+VTS=": "[933,,150]" is two frequencies and a duration in 10 ms, "{5,20}" a key and a
/// duration, "5" a key of the `usual` duration. Nothing when it is invalid.
std::optional<std::vector<ToneStep>> ToneList(const std::string& text, std::chrono::milliseconds usual);

}  // namespace orven::emulator
