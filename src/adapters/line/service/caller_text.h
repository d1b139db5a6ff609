// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>
#include <string_view>

namespace orven {

/// Longest caller text that is passed on, in characters; several times what networks send.
inline constexpr std::size_t kMaxCallerText = 120;

/// A caller's name or number, sanitised: strangers choose this text, and it ends up in log lines, file names,
/// mail headers and command lines. Bytes that are not UTF-8 become "?", control and direction characters
/// become blanks, `"` becomes `'`, several blanks become one, and a text longer than kMaxCallerText is cut.
std::string CleanCallerText(std::string_view text);

}  // namespace orven
