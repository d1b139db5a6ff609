// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>
#include <vector>

#include "simulation/story.h"

namespace orven::test {

struct Outcome {
  std::vector<std::string> broken;  ///< promises, each with its time
  std::vector<std::string> log;     ///< the system log, in the order in which it was written
  int calls = 0;                    ///< that were offered
};

/// Plays a story in a world of its own. At its end everything is mended, and a last call without any fault
/// must be whole.
Outcome Play(const Story& story);

/// The shortest part of a story, whose outcome was `outcome`, that breaks one of the same promises.
Story Shrunk(Story story, const Outcome& outcome);

}  // namespace orven::test
