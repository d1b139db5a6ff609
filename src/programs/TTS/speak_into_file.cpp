// SPDX-License-Identifier: GPL-3.0-or-later
#include <algorithm>
#include <exception>
#include <iostream>
#include <iterator>
#include <stdexcept>
#include <string>

#include "base/utf8.h"
#include "programs/TTS/helper.h"
#include "programs/TTS/report.h"
#include "programs/TTS/speaking_rate.h"
#include "programs/TTS/speech_engine.h"
#include "programs/TTS/speech_file.h"

namespace orven {
namespace {

constexpr std::string_view kVoice = "English (America";

void Speak(const std::string& text, const std::string& path) {
  if (!IsUtf8(text)) throw std::runtime_error("the text on standard input is not UTF-8");
  SpeechEngine engine;
  const auto voices = engine.Voices();
  const auto voice = std::find_if(voices.begin(), voices.end(),
                                  [](const Voice& one) { return one.description.starts_with(kVoice); });
  if (voice == voices.end()) throw std::runtime_error("the speech engine has no American English voice");
  RemoveLeftovers(path);
  SpeechFile file(path, engine.SampleRate());
  engine.Speak({text, voice->identifier, WordsPerMinute(0)}, [&](std::span<const std::int16_t> samples) {
    file.Write(samples);
    return true;
  });
  file.Finish();
  file.Appear();
}

}  // namespace

int SpeakIntoFile(const char* path) {
  const std::string text{std::istreambuf_iterator<char>(std::cin), std::istreambuf_iterator<char>()};
  try {
    Speak(text, path);
    return 0;
  } catch (const std::exception& failure) {
    Report(failure.what());
    return 1;
  }
}

}  // namespace orven
