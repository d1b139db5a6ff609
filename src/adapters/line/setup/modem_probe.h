// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <atomic>
#include <chrono>
#include <string>

#include "platform/telephone_lines.h"

namespace orven {

/// Asks what is at the serial port `path` (115200 bit/s, 8N1, RTS/CTS) whether it is a modem (ITU-T
/// V.250: "AT" is answered by "OK") and a voice modem (service class 8 among the answers to
/// "AT+FCLASS=?", ITU-T V.253), and says what came of it. Waits up to `patience` for each answer.
/// Blocks; any thread but the user-interface thread. Ends early, with any result, when `cancelled`
/// becomes true.
LineTestResult ProbeModem(const std::string& path, const std::atomic<bool>& cancelled,
                          std::chrono::milliseconds patience = std::chrono::seconds(2));

}  // namespace orven
