// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <array>
#include <span>
#include <string>
#include <string_view>

#include "platform/telephone_lines.h"

namespace orven {

/// One key that a kind of line may have.
struct LineKey {
  std::string_view name;
  bool (*valid)(std::string_view value);
  const char* expected;                         ///< completes "expected …"
  std::string TelephoneLine::*value = nullptr;  ///< where the dialog has the value unchanged; null: nowhere
  std::string_view control = {};                ///< which shows it
  const char* label = "";                       ///< begins a sentence about the value
  bool required = false;                        ///< the line cannot work without it
  bool secret = false;                          ///< its value is never shown
  bool per_account = false;  ///< also with a number at its end, 2 to 9, for a further account
};

/// One kind of line: the value of `type` and the keys that go with it.
struct LineType {
  LineKind kind;
  std::string_view name;
  std::span<const LineKey> keys;
};

/// All kinds of lines.
std::span<const LineType> LineTypes();

const LineType& TypeOf(LineKind kind);

/// The key of `type` that is written as `name`, perhaps with the number of an account; nullptr: there is
/// none.
const LineKey* FindKey(const LineType& type, std::string_view name);

/// What the keys of the accounts have at their ends: nothing for the first one, then the numbers.
inline constexpr std::array<std::string_view, 9> kAccountNumbers{"", "2", "3", "4", "5", "6", "7", "8", "9"};

}  // namespace orven
