// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <charconv>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace orven {

/// Convert a text to a number. They accept blanks at either end, a sign, a decimal fraction and an exponent,
/// and round a fraction to the nearest whole number, halves to even. They throw RuntimeError 13 ("Type
/// mismatch") for anything else and 6 ("Overflow") for a number that does not fit.
std::int16_t ToInt16(std::string_view text);
std::int32_t ToInt32(std::string_view text);

/// The whole number that `text` is, in digits of `base`; nothing else may stand there, but a "-" if `Number`
/// has negative values. Nothing when it is not one or does not fit.
template <class Number>
std::optional<Number> WholeNumber(std::string_view text, int base = 10) {
  Number number{};
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number, base);
  if (error != std::errc() || end != text.data() + text.size()) return std::nullopt;
  return number;
}

/// `value` as a 16-bit number; throws RuntimeError 6 when it does not fit.
std::int16_t NarrowToInt16(std::int64_t value);

/// Shortest decimal text that reads back as `value`, with "." whatever the locale: 3.02 gives "3.02".
std::string ToText(double value);

/// The size of a container, for operations that use 32-bit numbers.
std::int32_t ToCount(std::size_t size);

}  // namespace orven
