// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>

namespace orven {

/// Writes one line to standard error, whole. Any thread.
void Report(const std::string& text);

}  // namespace orven
