// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace orven::emulator {

/// The parts between commas that are in no brackets.
std::vector<std::string> SplitValues(std::string_view text);

/// `text` as a whole number of 0 or more, or nothing.
std::optional<int> Number(std::string_view text);

/// Whether `value` is in one group of a range, "(0,121-131)"; "()" takes everything.
bool InGroup(std::string_view group, int value);

/// What a setting is after "=value": parts that are left out stay as they are. Nothing when a part is
/// outside `range`, a group a part: "(0-3),(0-255)".
std::optional<std::string> Changed(const std::string& range, const std::string& present,
                                   const std::string& value);

}  // namespace orven::emulator
