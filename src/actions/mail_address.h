// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>

namespace orven {

/// Whether `text` can be the address of a mail: six characters or more, one "@" with a "." somewhere
/// behind it, no two dots in a row, none of the characters that addresses on the Internet do without.
bool IsMailAddress(const std::string& text);

}  // namespace orven
