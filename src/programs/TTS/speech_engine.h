// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <functional>
#include <span>
#include <string>
#include <vector>

#include "programs/TTS/voice.h"

namespace orven {

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

}  // namespace orven
