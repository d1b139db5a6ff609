// SPDX-License-Identifier: GPL-3.0-or-later
#include "programs/TTS/voice.h"

#include <algorithm>
#include <set>

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

/// How far a voice is from the language wanted: 0 to 3, 4 for another language.
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

}  // namespace orven
