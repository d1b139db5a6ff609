// SPDX-License-Identifier: GPL-3.0-or-later
#include "base/conversions.h"

#include <array>
#include <charconv>
#include <cmath>
#include <limits>

#include "base/runtime_error.h"
#include "base/text.h"

namespace orven {
namespace {

double ToDouble(std::string_view text) {
  text = Trimmed(text, " \t");
  if (text.starts_with('+') && !text.starts_with("+-")) text.remove_prefix(1);
  // from_chars would accept "inf" and "nan".
  if (text.find_first_not_of("+-.0123456789eE") != std::string_view::npos) {
    throw RuntimeError(ErrorNumber::TypeMismatch);
  }
  double value = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  if (error == std::errc::result_out_of_range) throw RuntimeError(ErrorNumber::Overflow);
  if (error != std::errc() || end != text.data() + text.size()) throw RuntimeError(ErrorNumber::TypeMismatch);
  return value;
}

template <class Integer>
Integer ToInteger(std::string_view text) {
  const double rounded = std::nearbyint(ToDouble(text));
  if (rounded < std::numeric_limits<Integer>::min() || rounded > std::numeric_limits<Integer>::max()) {
    throw RuntimeError(ErrorNumber::Overflow);
  }
  return static_cast<Integer>(rounded);
}

}  // namespace

std::int16_t ToInt16(std::string_view text) {
  return ToInteger<std::int16_t>(text);
}

std::int32_t ToInt32(std::string_view text) {
  return ToInteger<std::int32_t>(text);
}

std::int16_t NarrowToInt16(std::int64_t value) {
  if (value < std::numeric_limits<std::int16_t>::min() || value > std::numeric_limits<std::int16_t>::max()) {
    throw RuntimeError(ErrorNumber::Overflow);
  }
  return static_cast<std::int16_t>(value);
}

std::string ToText(double value) {
  std::array<char, 32> buffer{};
  const auto [end, error] = std::to_chars(buffer.data(), buffer.data() + buffer.size(), value);
  if (error != std::errc()) throw RuntimeError(ErrorNumber::Overflow);
  return {buffer.data(), end};
}

std::int32_t ToCount(std::size_t size) {
  if (size > static_cast<std::size_t>(std::numeric_limits<std::int32_t>::max())) {
    throw RuntimeError(ErrorNumber::Overflow);
  }
  return static_cast<std::int32_t>(size);
}

}  // namespace orven
