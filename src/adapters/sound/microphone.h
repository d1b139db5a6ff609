// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>

#include "adapters/sound/sound_server.h"

namespace orven {

/// The id of the input to record from beside `output`: a connected one of the same physical card, the
/// desktop's default one among several; else, and for an empty `output`, the desktop's default input, or
/// the first connected one when the default is none. Empty when there is none.
std::string MicrophoneOf(const SoundServer& server, const std::string& output);

}  // namespace orven
