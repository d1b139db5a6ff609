// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>

#include "platform/operating_system.h"

namespace orven {

/// The name under which the program knows a version of the operating system; empty for a version of
/// the two Windows families that it does not know, "Failed" for any other system.
std::string GetWindowsVersionName(const SystemVersion& version);

/// Whether toolbars must keep the look of the early versions.
bool IsOldWindows(const std::string& version_name);

}  // namespace orven
