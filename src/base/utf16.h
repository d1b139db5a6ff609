// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace orven {

/// UTF-16LE, as Windows exports write it, from and to the UTF-8 that this program uses.

/// Bytes that are no UTF-8 become low surrogates U+DC80 to U+DCFF, so that nothing is lost: a path on
/// disk may hold any byte.
std::string Utf16FromUtf8(std::string_view utf8);

/// The way back. Other surrogates that stand alone become U+FFFD. Nothing for an odd number of bytes.
std::optional<std::string> Utf8FromUtf16(std::string_view utf16);

}  // namespace orven
