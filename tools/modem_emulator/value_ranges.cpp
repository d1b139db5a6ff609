// SPDX-License-Identifier: GPL-3.0-or-later
#include "modem_emulator/value_ranges.h"

#include <algorithm>
#include <charconv>

namespace orven::emulator {

std::vector<std::string> SplitValues(std::string_view text) {
  std::vector<std::string> parts(1);
  int depth = 0;
  for (const char letter : text) {
    if (letter == '(' || letter == '[' || letter == '{') ++depth;
    if (letter == ')' || letter == ']' || letter == '}') --depth;
    if (letter == ',' && depth == 0) {
      parts.emplace_back();
    } else {
      parts.back() += letter;
    }
  }
  return parts;
}

std::optional<int> Number(std::string_view text) {
  int value = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  if (error != std::errc() || end != text.data() + text.size() || value < 0) return std::nullopt;
  return value;
}

bool InGroup(std::string_view group, int value) {
  if (group.size() < 2 || group == "()") return true;
  const auto choices = SplitValues(group.substr(1, group.size() - 2));
  return std::any_of(choices.begin(), choices.end(), [value](const std::string& choice) {
    const auto dash = choice.find('-');
    const auto least = Number(choice.substr(0, dash));
    const auto most = dash == std::string::npos ? least : Number(choice.substr(dash + 1));
    return least && most && *least <= value && value <= *most;
  });
}

std::optional<std::string> Changed(const std::string& range, const std::string& present,
                                   const std::string& value) {
  const auto groups = SplitValues(range);
  const auto wanted = SplitValues(value);
  auto parts = SplitValues(present);
  parts.resize(groups.size());
  if (wanted.size() > groups.size()) return std::nullopt;
  for (std::size_t i = 0; i < wanted.size(); ++i) {
    if (wanted[i].empty()) continue;
    const auto number = Number(wanted[i]);
    if (!number || !InGroup(groups[i], *number)) return std::nullopt;
    parts[i] = wanted[i];
  }
  std::string changed;
  for (const auto& part : parts) changed += (&part == &parts.front() ? "" : ",") + part;
  return changed;
}

}  // namespace orven::emulator
