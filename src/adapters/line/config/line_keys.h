// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <span>
#include <string>
#include <string_view>

#include "platform/telephone_lines.h"

namespace orven {

/// One key that a kind of line may have.
struct LineKey {
  std::string_view name;
  bool (*valid)(std::string_view value);
  std::string_view expected;                    ///< completes "expected …"
  std::string TelephoneLine::*value = nullptr;  ///< where the dialog has the value unchanged; null: nowhere
  std::string_view control = {};                ///< which shows it
  const char* label = "";                       ///< begins a sentence about the value
  bool required = false;                        ///< the line cannot work without it
  bool secret = false;                          ///< its value is never shown
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

}  // namespace orven
