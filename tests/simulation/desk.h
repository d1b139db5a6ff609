// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>

#include "simulation/dice.h"
#include "simulation/story.h"

namespace orven::test {

/// Any moment of the call that begins at `begin`, often one at which the machine is just doing something.
std::chrono::milliseconds Moment(Dice& dice, std::chrono::milliseconds begin);

/// What the person at the desk does meanwhile: drops and answers, the quick options, the list, the player,
/// the window and its tray icon, the caller view, takes from the microphone.
void WriteDesk(Dice& dice, Story& story, std::chrono::milliseconds begin);

/// The program has ended, one way or the other, and is started again: a window of its own, the disk as it is.
void StartAgain(World& world);

}  // namespace orven::test
