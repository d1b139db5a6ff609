// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <atomic>
#include <string>
#include <vector>

#include "platform/telephone_lines.h"

namespace orven {

/// The ports that may have a modem: USB modems and serial cables, by udev's name in serial/by-id, which does
/// not depend on the socket that they are plugged into, else as ttyACM* and ttyUSB*. `devices` is the folder
/// /dev.
std::vector<SerialPortFound> FindSerialPorts(const std::string& devices = "/dev");

/// Tests the modem at the serial port `port` (kAnyPort: at one port after the other until one is usable) with
/// the commands that prepare a line. Blocks for some seconds; any QThread but the user-interface thread. Ends
/// early, with any result, when `cancelled` becomes true.
LineTestResult ProbeModem(const std::string& port, const std::atomic<bool>& cancelled);

}  // namespace orven
