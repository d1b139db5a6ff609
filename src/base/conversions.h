// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace orven {

/// Convert a text to a number. They accept blanks at either end, a sign, a decimal fraction and an exponent,
/// and round a fraction to the nearest whole number, halves to even. They throw RuntimeError 13 ("Type
/// mismatch") for anything else and 6 ("Overflow") for a number that does not fit.
std::int16_t ToInt16(std::string_view text);
std::int32_t ToInt32(std::string_view text);

/// `value` as a 16-bit number; throws RuntimeError 6 when it does not fit.
std::int16_t NarrowToInt16(std::int64_t value);

/// Shortest decimal text that reads back as `value`, with "." whatever the locale: 3.02 gives "3.02".
std::string ToText(double value);

/// The size of a container, for operations that use 32-bit numbers.
std::int32_t ToCount(std::size_t size);

}  // namespace orven
