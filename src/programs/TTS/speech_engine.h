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
  std::string description;             ///< as a person chooses it, "English (America)"
  std::string identifier;              ///< as the engine finds it
  std::vector<std::string> languages;  ///< in small letters with hyphens, "en-us"
};

/// The voices as they are offered: those for the language of `locale` ("de_AT") first, of these the ones for
/// exactly that, then for a part of it, then for the language as such; the others follow as they were.
/// Descriptions are made unique and free of line breaks. The locales "C" and "POSIX" count as American
/// English.
std::vector<Voice> VoicesFor(std::string_view locale, std::vector<Voice> voices);

/// The voices' descriptions, one a line, with "\r\n" between them.
std::string JoinedDescriptions(const std::vector<Voice>& voices);

/// A text and how it is to be spoken.
struct Utterance {
  std::string text;   ///< UTF-8
  std::string voice;  ///< Voice::identifier
  int words_per_minute;
};

/// The speech engine, espeak-ng. Opens no sound device. One object a process, because the library has one
/// voice; one thread at a time.
class SpeechEngine {
 public:
  /// Takes the next samples (mono, SampleRate a second); false ends the speech.
  using Sink = std::function<bool(std::span<const std::int16_t>)>;

  /// Throws std::runtime_error when the engine's data are missing or damaged. To be called before there are
  /// other threads: it changes the environment for a moment.
  SpeechEngine();
  ~SpeechEngine();
  SpeechEngine(const SpeechEngine&) = delete;
  SpeechEngine& operator=(const SpeechEngine&) = delete;

  int SampleRate() const { return sample_rate_; }

  /// In the engine's order.
  std::vector<Voice> Voices() const;

  /// Speaks all of the text into `sink` while it is being made, in pieces of a few hundredths of a second.
  /// Nothing in the text is an instruction to the engine. Throws std::runtime_error when the voice
  /// cannot be used, and what `sink` throws.
  void Speak(const Utterance& utterance, const Sink& sink);

 private:
  int sample_rate_ = 0;
};

/// Words a minute for a rate of the slider: 0 is the engine's own rate, 10 steps are a factor of three.
/// What lies beyond the slider counts as its end, what lies beyond the engine's range as that's end.
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
