// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <memory>

#include "adapters/line/modem/at_channel.h"

namespace orven {

/// A link over a serial port (or a pseudo-terminal) on the event loop of Qt that runs on the thread that
/// makes it. CRTSCTS only where the port has such wires; a dropped carrier is no reason to end (CLOCAL).
std::unique_ptr<ModemLink> MakeSerialLink();

}  // namespace orven
