// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "modem_emulator/call_sounds.h"

namespace orven::emulator {

/// What stands behind "+VTS=": "[933,,150]" two frequencies and a duration in 10 ms, "{5,20}" a key and a
/// duration, "5" a key of `usual` duration. Nothing when it is none of it.
std::optional<std::vector<ToneStep>> ToneList(const std::string& text, std::chrono::milliseconds usual);

}  // namespace orven::emulator
