// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>

#include "simulation/story.h"

namespace orven::test {

/// A random world and what happens in it: settings, failing parts, messages that are there already, and the
/// events of one to three calls in any order and at any time. The same seed gives the same story on every
/// machine.
Story RandomStory(std::uint64_t seed);

}  // namespace orven::test
