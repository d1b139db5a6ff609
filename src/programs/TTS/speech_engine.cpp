// SPDX-License-Identifier: GPL-3.0-or-later
#include "programs/TTS/speech_engine.h"

#include <espeak-ng/espeak_ng.h>
#include <espeak-ng/speak_lib.h>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <exception>
#include <optional>
#include <set>
#include <stdexcept>
#include <utility>

namespace orven {
namespace {

std::string LanguageTag(std::string_view locale) {
  if (locale.empty() || locale == "C" || locale == "POSIX") return "en-us";
  std::string tag;
  for (const char letter : locale) {
    const bool capital = letter >= 'A' && letter <= 'Z';
    tag += letter == '_' ? '-' : capital ? static_cast<char>(letter - 'A' + 'a') : letter;
  }
  // The engine names the spoken language, systems the written one.
  if (tag == "zh" || tag.starts_with("zh-")) return "cmn";
  return tag;
}

/// How well a voice matches the language: 0 (best) to 3, 4 for another language.
int Distance(const Voice& voice, const std::string& tag) {
  const std::string language = tag.substr(0, tag.find('-'));
  int distance = 4;
  for (const std::string& spoken : voice.languages) {
    if (spoken == tag) return 0;
    if (spoken.starts_with(tag + "-")) distance = std::min(distance, 1);
    if (spoken == language) distance = std::min(distance, 2);
    if (spoken.starts_with(language + "-")) distance = std::min(distance, 3);
  }
  return distance;
}

std::string OneLine(std::string text) {
  std::replace_if(
      text.begin(), text.end(), [](char letter) { return letter == '\r' || letter == '\n'; }, ' ');
  text.erase(0, text.find_first_not_of(' '));
  text.erase(text.find_last_not_of(' ') + 1);
  return text;
}

/// Points this process at a sound server that does not exist while it lives. The library connects to the
/// server when it starts, although it does not play anything, and would wait forever for one that hangs.
class NoSoundServer {
 public:
  NoSoundServer() {
    if (const char* server = std::getenv(kVariable)) before_ = server;
    ::setenv(kVariable, "unix:/dev/null/none", 1);
  }
  NoSoundServer(const NoSoundServer&) = delete;
  NoSoundServer& operator=(const NoSoundServer&) = delete;
  ~NoSoundServer() {
    if (before_) {
      ::setenv(kVariable, before_->c_str(), 1);
    } else {
      ::unsetenv(kVariable);
    }
  }

 private:
  static constexpr const char* kVariable = "PULSE_SERVER";
  std::optional<std::string> before_;
};

/// Where the speech of the present call goes. A global, as the library's callback passes user data only with
/// events.
struct Receiver {
  const SpeechEngine::Sink& sink;
  std::exception_ptr failure;
};
Receiver* g_receiver = nullptr;

constexpr int kGoOn = 0;
constexpr int kAbort = 1;

int Receive(short* samples, int count, espeak_EVENT* /*events*/) {
  if (samples == nullptr || count <= 0) return kGoOn;
  // The library is C: no exception may pass through it.
  try {
    return g_receiver->sink({samples, static_cast<std::size_t>(count)}) ? kGoOn : kAbort;
  } catch (...) {
    g_receiver->failure = std::current_exception();
    return kAbort;
  }
}

void Check(espeak_ng_STATUS status, const std::string& what) {
  if (status == ENS_OK) return;
  std::array<char, 512> text{};
  espeak_ng_GetStatusCodeMessage(status, text.data(), text.size());
  throw std::runtime_error(what + ": " + text.data());
}

/// Replaces control characters by blanks: the engine would take them as commands, or as the end of the text.
std::string WithoutCommands(std::string text) {
  for (char& letter : text) {
    const auto code = static_cast<unsigned char>(letter);
    const bool line_or_tab = letter == '\t' || letter == '\n' || letter == '\r';
    if ((code < 0x20 && !line_or_tab) || code == 0x7F) letter = ' ';
  }
  return text;
}

/// Reads the speech library's list of languages. Each entry is a priority byte and a zero-terminated name; a
/// zero instead of the priority ends the list.
std::vector<std::string> Languages(const char* list) {
  std::vector<std::string> languages;
  while (list != nullptr && *list != '\0') {
    languages.emplace_back(list + 1);
    list += 1 + languages.back().size() + 1;
  }
  return languages;
}

}  // namespace

std::vector<Voice> VoicesFor(std::string_view locale, std::vector<Voice> voices) {
  const std::string tag = LanguageTag(locale);
  std::stable_sort(voices.begin(), voices.end(), [&tag](const Voice& one, const Voice& other) {
    return Distance(one, tag) < Distance(other, tag);
  });
  std::set<std::string> taken;
  for (Voice& voice : voices) {
    voice.description = OneLine(voice.description);
    if (voice.description.empty()) voice.description = voice.identifier;
    if (taken.contains(voice.description)) voice.description += " [" + voice.identifier + "]";
    taken.insert(voice.description);
  }
  return voices;
}

std::string JoinedDescriptions(const std::vector<Voice>& voices) {
  std::string joined;
  for (const Voice& voice : voices) joined += (joined.empty() ? "" : "\r\n") + voice.description;
  return joined;
}

SpeechEngine::SpeechEngine() {
  const NoSoundServer no_sound_server;
  espeak_ng_InitializePath(nullptr);
  espeak_ng_ERROR_CONTEXT context = nullptr;
  const espeak_ng_STATUS status = espeak_ng_Initialize(&context);
  espeak_ng_ClearErrorContext(&context);
  Check(status, "the speech engine cannot be used");
  Check(espeak_ng_InitializeOutput(ENOUTPUT_MODE_SYNCHRONOUS, 0, nullptr),
        "the speech engine cannot be used");
  sample_rate_ = espeak_ng_GetSampleRate();
  espeak_SetSynthCallback(Receive);
}

SpeechEngine::~SpeechEngine() {
  espeak_ng_Terminate();
}

std::vector<Voice> SpeechEngine::Voices() const {
  std::vector<Voice> voices;
  // Without a criterion the list leaves out voices of other synthesizers, which may not be installed.
  for (const espeak_VOICE** voice = espeak_ListVoices(nullptr); *voice != nullptr; ++voice) {
    voices.push_back({(*voice)->name, (*voice)->identifier, Languages((*voice)->languages)});
  }
  return voices;
}

void SpeechEngine::Speak(const Utterance& utterance, const Sink& sink) {
  Check(espeak_ng_SetVoiceByName(utterance.voice.c_str()),
        "the voice " + utterance.voice + " cannot be used");
  Check(espeak_ng_SetParameter(espeakRATE, utterance.words_per_minute, 0), "the rate cannot be set");
  const std::string text = WithoutCommands(utterance.text);
  Receiver receiver{sink, nullptr};
  g_receiver = &receiver;
  const espeak_ng_STATUS status = espeak_ng_Synthesize(text.c_str(), text.size() + 1, 0, POS_CHARACTER, 0,
                                                       espeakCHARS_UTF8 | espeakENDPAUSE, nullptr, nullptr);
  g_receiver = nullptr;
  if (receiver.failure) std::rethrow_exception(receiver.failure);
  if (status != ENS_SPEECH_STOPPED) Check(status, "the text cannot be spoken");
}

}  // namespace orven
