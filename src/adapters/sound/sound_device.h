// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QAudioDevice>
#include <string>

namespace orven {

/// The output with this id that is there now, or a null one. Sound thread; may wait for the sound server.
QAudioDevice OutputOf(const std::string& id);

/// The same for inputs.
QAudioDevice InputOf(const std::string& id);

/// What a device is told to have done that cannot be used although it is there.
inline constexpr const char* kNotOpened =
    "could not be opened. If the sound server was restarted, ORVEN has to be, too.";

/// "The KIND "DESCRIPTION" WHAT", to begin a sentence about a device.
std::string Told(const char* kind, const QAudioDevice& device, const char* what);

}  // namespace orven
