// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>

namespace orven {

/// Whether values of this type are texts, whose hexadecimal notation is UTF-16LE: plain (1), with
/// environment variables (2), lists of texts (7).
constexpr bool IsTextType(std::uint32_t type) {
  return type == 1 || type == 2 || type == 7;
}

}  // namespace orven
