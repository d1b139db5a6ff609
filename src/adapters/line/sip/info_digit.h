// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <optional>
#include <string_view>

namespace orven {

/// The key in the body of a SIP INFO request: "Signal=5\r\nDuration=160" (application/dtmf-relay) or
/// the bare key (application/dtmf). Keys may be written as their event codes ("10" is "*", "11" "#").
/// Nothing when the body names no key.
std::optional<char> DigitOfInfo(std::string_view body);

}  // namespace orven
