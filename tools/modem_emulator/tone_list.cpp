// SPDX-License-Identifier: GPL-3.0-or-later
#include "modem_emulator/tone_list.h"

#include "modem_emulator/value_ranges.h"

namespace orven::emulator {
namespace {

using std::chrono::milliseconds;

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
