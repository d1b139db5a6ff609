// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/words.h"

namespace orven {

/// How the telephone line is, for its owner.
struct LineHealth {
  bool on = false;      ///< the line is open
  bool trying = false;  ///< it is off and is opened as soon as possible
  Words trouble{};  ///< why calls cannot come in, and what helps, in one sentence; empty: nothing is wrong

  bool operator==(const LineHealth& other) const = default;
};

}  // namespace orven
