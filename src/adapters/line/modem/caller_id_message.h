// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace orven {

/// What a caller id message tells, as it was sent; nothing where it has no such parameter. A reason for its
/// absence ("P" withheld, "O" not known) stands in place of a number or name.
struct CallerIdMessage {
  std::optional<std::string> number;
  std::optional<std::string> name;
};

/// Reads a caller id message as it goes over the line between two rings, in hexadecimal digits with or
/// without blanks: single data message format (type 04) or multiple (type 80), Telcordia GR-30 and GR-31.
/// Nothing when it is another kind, cut short, or its checksum is wrong.
std::optional<CallerIdMessage> ReadCallerIdMessage(std::string_view hexadecimal);

}  // namespace orven
