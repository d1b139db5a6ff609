// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <atomic>
#include <string>
#include <vector>

#include "platform/telephone_lines.h"

namespace orven {

/// The ports a modem can be at: USB modems and USB serial cables by the name that stays whatever they
/// are plugged into (udev's serial/by-id), else as ttyACM* and ttyUSB*. `devices` is the folder /dev.
std::vector<SerialPortFound> FindSerialPorts(const std::string& devices = "/dev");

/// Asks what is at the serial port `port` (or, for kAnyPort, at each port there is until one fits) as the
/// line does before it takes calls, and says what came of it. Blocks for some seconds; any thread of Qt's but
/// the user-interface thread. Ends early, with any result, when `cancelled` becomes true.
LineTestResult ProbeModem(const std::string& port, const std::atomic<bool>& cancelled);

}  // namespace orven
