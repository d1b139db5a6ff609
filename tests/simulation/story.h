// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <functional>

#include "support/world.h"

namespace orven::test {

/// One event in a simulated world.
struct Step {
  std::chrono::milliseconds at;
  std::string what;  ///< description, printed after a failure
  std::function<void(World&)> act;
  std::size_t number = 0;  ///< 1-based number in the complete story
};

/// The time of the steps before the program starts: settings, missing files, older messages.
inline constexpr std::chrono::milliseconds kBeforeStart{-1};

/// The events of one world, ordered by time. Any of them can be left out.
struct Story {
  std::vector<Step> steps;
  std::chrono::milliseconds end{0};  ///< by then every call has been hung up
};

/// Returns a random story: settings, faults, older messages, and one to three calls with events in any order
/// and at any time. A seed gives the same story on every machine.
Story RandomStory(std::uint64_t seed);

/// Clears every fault that a story can contain.
void MendEverything(World& world);

}  // namespace orven::test
