// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <span>
#include <string>
#include <string_view>

namespace orven {

/// One key that a kind of line understands.
struct LineKey {
  std::string_view name;
  bool (*valid)(std::string_view value);
  std::string_view expected;  ///< completes "expected …"
  bool required = false;      ///< without it the line cannot work
  bool secret = false;        ///< its value is never shown
};

/// One kind of line.
struct LineType {
  std::string_view name;
  std::span<const LineKey> keys;
};

/// Every kind of line that `lines.ini` can name.
std::span<const LineType> LineTypes();

}  // namespace orven
