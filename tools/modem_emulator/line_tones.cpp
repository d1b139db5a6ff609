// SPDX-License-Identifier: GPL-3.0-or-later
#include "modem_emulator/line_tones.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <string_view>
#include <utility>

#include "modem_emulator/command_line.h"

namespace orven::emulator {
namespace {

using std::chrono::milliseconds;

constexpr int kPerMillisecond = 8;
constexpr double kRate = 8000;
constexpr double kLevel = 4000;  // of each of a tone's waves: about -15 dBm0
constexpr milliseconds kOneSecond(1000);
constexpr milliseconds kHalfSecond(500);

double Wave(double frequency, std::int64_t position) {
  if (frequency <= 0) return 0;
  return kLevel * std::sin(2 * std::numbers::pi * frequency * static_cast<double>(position) / kRate);
}

std::int16_t Sum(std::int16_t a, double b) {
  return static_cast<std::int16_t>(std::clamp(std::lround(a + b), -32768L, 32767L));
}

constexpr milliseconds kUnit(10);
constexpr int kHighest = 3300;  // Hz

std::optional<double> Frequency(const std::string& text) {
  if (text.empty()) return 0;
  const auto number = Number(text);
  if (!number || *number > kHighest) return std::nullopt;
  return *number;
}

std::optional<milliseconds> Duration(const std::vector<std::string>& parts, std::size_t place,
                                     milliseconds usual) {
  if (parts.size() <= place || parts[place].empty()) return usual;
  const auto number = Number(parts[place]);
  if (!number) return std::nullopt;
  return *number * kUnit;
}

std::optional<ToneStep> Step(const std::string& text, milliseconds usual) {
  if (text.size() == 1) return KeyTone(text[0], usual);
  if (text.size() < 3) return std::nullopt;
  const auto parts = SplitValues(text.substr(1, text.size() - 2));
  if (text.front() == '{' && text.back() == '}' && parts[0].size() == 1 && parts.size() <= 2) {
    const auto duration = Duration(parts, 1, usual);
    if (duration) return KeyTone(parts[0][0], *duration);
  }
  if (text.front() == '[' && text.back() == ']' && parts.size() <= 3) {
    const auto first = Frequency(parts[0]);
    const auto second = parts.size() > 1 ? Frequency(parts[1]) : 0;
    const auto duration = Duration(parts, 2, usual);
    if (first && second && duration) return ToneStep{*first, *second, *duration};
  }
  return std::nullopt;
}

}  // namespace

ToneStep KeyTone(char key, milliseconds duration) {
  constexpr std::string_view kKeys = "123A456B789C*0#D";
  constexpr double kRows[] = {697, 770, 852, 941};
  constexpr double kColumns[] = {1209, 1336, 1477, 1633};
  const auto place = kKeys.find(key);
  if (place == std::string_view::npos) return {0, 0, duration};
  return {kRows[place / 4], kColumns[place % 4], duration};
}

ToneSequence::ToneSequence(std::vector<ToneStep> steps, bool again)
    : steps_(steps.begin(), steps.end()), again_(again) {}

void ToneSequence::Add(std::span<std::int16_t> out) {
  for (auto& sample : out) {
    if (steps_.empty()) return;
    const auto& step = steps_.front();
    sample = Sum(sample, Wave(step.first, position_) + Wave(step.second, position_));
    if (++position_ < step.duration.count() * kPerMillisecond) continue;
    position_ = 0;
    if (again_) steps_.push_back(step);
    steps_.pop_front();
  }
}

void CallerAudio::Say(std::vector<std::int16_t> samples) {
  speech_ = std::move(samples);
  spoken_ = 0;
}

void CallerAudio::Press(char key, milliseconds duration) {
  tones_.push_back(ToneSequence({KeyTone(key, duration)}));
}

void CallerAudio::Tone(NetworkTone tone) {
  Reset();
  if (tone == NetworkTone::Busy) {
    tones_.push_back(ToneSequence({{480, 620, kHalfSecond}, {0, 0, kHalfSecond}}, true));
  } else if (tone == NetworkTone::Dial) {
    tones_.push_back(ToneSequence({{350, 440, kOneSecond}}, true));
  }
}

void CallerAudio::Take(std::span<std::int16_t> out) {
  const auto count = std::min(out.size(), speech_.size() - spoken_);
  std::copy_n(speech_.begin() + static_cast<std::ptrdiff_t>(spoken_), count, out.begin());
  std::fill(out.begin() + static_cast<std::ptrdiff_t>(count), out.end(), std::int16_t{0});
  spoken_ += count;
  for (auto& tone : tones_) tone.Add(out);
  std::erase_if(tones_, [](const ToneSequence& tone) { return tone.Over(); });
}

std::optional<std::vector<ToneStep>> ToneList(const std::string& text, milliseconds usual) {
  std::vector<ToneStep> steps;
  for (const auto& part : SplitValues(text)) {
    const auto step = Step(part, usual);
    if (!step) return std::nullopt;
    steps.push_back(*step);
  }
  return steps;
}

}  // namespace orven::emulator
