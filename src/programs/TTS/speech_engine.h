// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <functional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace orven {
/// A voice of the speech engine.
struct Voice {
  std::string description;             ///< shown to the user, "English (America)"
  std::string identifier;              ///< the engine's own name
  std::vector<std::string> languages;  ///< in lower case with hyphens, "en-us"
};

/// The voices in the order shown to the user: first those for the language of `locale` ("de_AT"), best match
/// first, then the others in their order. Makes descriptions unique and removes line breaks from them. The
/// locales "C" and "POSIX" count as American English.
std::vector<Voice> VoicesFor(std::string_view locale, std::vector<Voice> voices);

/// The voices' descriptions, separated by "\r\n".
std::string JoinedDescriptions(const std::vector<Voice>& voices);

/// A text and how to speak it.
struct Utterance {
  std::string text;   ///< UTF-8
  std::string voice;  ///< Voice::identifier
  int words_per_minute;
};

/// The speech engine, espeak-ng. Does not open a sound device. One object per process, because the library
/// has one voice; one thread at a time.
class SpeechEngine {
 public:
  /// Takes the next samples (mono, SampleRate per second); false ends the speech.
  using Sink = std::function<bool(std::span<const std::int16_t>)>;

  /// Throws std::runtime_error when the engine's data are missing or damaged. To be called before other
  /// threads start, as it changes the environment for a moment.
  SpeechEngine();
  ~SpeechEngine();
  SpeechEngine(const SpeechEngine&) = delete;
  SpeechEngine& operator=(const SpeechEngine&) = delete;

  int SampleRate() const { return sample_rate_; }

  /// In the engine's order.
  std::vector<Voice> Voices() const;

  /// Speaks the text into `sink` while it is synthesised, in pieces of a few hundredths of a second. Nothing
  /// in the text is a command to the engine. Throws std::runtime_error when the voice cannot be used, and
  /// what `sink` throws.
  void Speak(const Utterance& utterance, const Sink& sink);

 private:
  int sample_rate_ = 0;
};

/// Words per minute for a position of the rate slider: 0 is the engine's normal rate, 10 steps are a factor
/// of three. Clamped to the range of the slider, -10 to 10, and to that of the engine.
inline int WordsPerMinute(int rate) {
  constexpr int kMostRate = 10;
  constexpr double kFactorOfTenSteps = 3;
  constexpr int kNormal = 175;   // espeakRATE_NORMAL
  constexpr int kSlowest = 80;   // espeakRATE_MINIMUM
  constexpr int kFastest = 450;  // espeakRATE_MAXIMUM
  const double steps = std::clamp(rate, -kMostRate, kMostRate);
  const double words = kNormal * std::pow(kFactorOfTenSteps, steps / kMostRate);
  return std::clamp(static_cast<int>(std::lround(words)), kSlowest, kFastest);
}

}  // namespace orven
