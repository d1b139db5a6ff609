// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>
#include <string_view>

namespace orven {

/// Longest caller text that is passed on, in characters; what a network tells fits several times.
inline constexpr std::size_t kMaxCallerText = 120;

/// A caller's name or number, made harmless. It is text from a stranger that ends up in log lines,
/// file names, mail headers and command lines: bytes that are no UTF-8 become "?", control and
/// direction characters become blanks, `"` becomes `'`, runs of blanks become one, and a text longer
/// than kMaxCallerText is cut.
std::string CleanCallerText(std::string_view text);

}  // namespace orven
