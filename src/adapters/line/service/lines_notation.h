// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>
#include <string_view>

namespace orven {

/// What is neither value nor name at the ends of a line of `lines.ini`.
inline constexpr std::string_view kLineBlanks = " \t\r";

std::string_view TrimmedLine(std::string_view text);

/// The line without its comment: a whole line behind ";" or "#", or the rest behind a blank and ";".
/// A "#" within a line is part of the value: passwords have it.
std::string_view WithoutLineComment(std::string_view line);

/// With ASCII letters in lower case, as keys are compared.
std::string LowerAscii(std::string_view text);

}  // namespace orven
