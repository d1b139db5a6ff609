// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <chrono>

namespace orven {

/// How long a wait of `tenths` tenths of a second lasts when it begins at uptime `now`. Waits end on
/// tenths of the uptime, so one lasts up to half a tenth less or more.
std::chrono::milliseconds TenthsWait(std::chrono::milliseconds now, int tenths);

}  // namespace orven
