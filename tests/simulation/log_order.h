// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>
#include <vector>

namespace orven::test {

/// What is wrong with a system log's steps: a step without the one it needs before it in the same
/// call, a step that stands twice, a fault line that nothing in the simulation explains. `records_lost`:
/// records have gone that the call list still shows.
std::vector<std::string> FaultsInLog(const std::vector<std::string>& lines, bool records_lost);

}  // namespace orven::test
