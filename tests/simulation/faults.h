// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "simulation/dice.h"
#include "simulation/story.h"

namespace orven::test {

/// What goes wrong around a call: answers, sound devices, the disk at any write, the file of the records,
/// the wall clock, the program itself.
void WriteFaults(Dice& dice, Story& story, std::chrono::milliseconds begin);

/// All is well again.
void MendEverything(World& world);

}  // namespace orven::test
