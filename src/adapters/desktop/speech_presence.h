// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>

namespace orven {

/// Whether texts can be spoken here: the speech helper is a program that may be executed, and the data of its
/// engine, espeak-ng, are where that looks for them or where systems install them. Nothing is started.
bool SpeechInstalled(const std::string& helper_path);

}  // namespace orven
