// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <functional>

#include "support/world.h"

namespace orven::test {

/// One thing that happens in a simulated world.
struct Step {
  std::chrono::milliseconds at;
  std::string what;  ///< readable, for the script that a failure prints
  std::function<void(World&)> act;
  std::size_t number = 0;  ///< in the whole story, from 1
};

/// The time of steps before the program starts: settings, missing files, older messages.
inline constexpr std::chrono::milliseconds kBeforeStart{-1};

/// What happens in one world, by time. Any of its steps can be left out.
struct Story {
  std::vector<Step> steps;
  std::chrono::milliseconds end{0};  ///< by then every call has been hung up
};

/// A random world: settings, failing parts, messages that are there already, and one to three calls whose
/// events come in any order and at any time. The same seed gives the same story on every machine.
Story RandomStory(std::uint64_t seed);

/// Ends every fault that a story can contain.
void MendEverything(World& world);

}  // namespace orven::test
