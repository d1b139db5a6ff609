// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>
#include <vector>

#include "platform/telephone_lines.h"

namespace orven {

/// The ports a modem can be at: USB modems and USB serial cables by the name that stays whatever they
/// are plugged into (udev's serial/by-id), else as ttyACM* and ttyUSB*. `devices` is the folder /dev.
std::vector<SerialPortFound> FindSerialPorts(const std::string& devices = "/dev");

}  // namespace orven
