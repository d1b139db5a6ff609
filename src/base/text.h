// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace orven {

/// Operations on texts, independent of the locale.

inline constexpr std::string_view kBlanks = " \t\r\n";

/// `text` without the characters of `blanks` at either end.
std::string_view Trimmed(std::string_view text, std::string_view blanks = kBlanks);

/// A to Z in lower case; all other bytes stay.
std::string Lower(std::string_view text);

/// The parts of `text` between the separators, one more than there are separators.
std::vector<std::string> Split(std::string_view text, char separator);

/// Each byte for which `plain` is false becomes "%" and two hexadecimal digits (RFC 3986, section 2.1).
std::string PercentEncoded(std::string_view text, bool (*plain)(unsigned char byte));

/// The inverse; digits in either case. Nothing when a "%" is not followed by two digits.
std::optional<std::string> PercentDecoded(std::string_view text);

/// Longest caller text that is passed on, in characters; several times what networks send.
inline constexpr std::size_t kMaxCallerText = 120;

/// A caller's name or number, sanitised: strangers choose this text, and it ends up in log lines, file names,
/// mail headers and command lines. Bytes that are not UTF-8 become "?", control and direction characters
/// become blanks, `"` becomes `'`, several blanks become one, and a text longer than kMaxCallerText is cut.
std::string CleanCallerText(std::string_view text);

}  // namespace orven
