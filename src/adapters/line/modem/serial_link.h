// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <memory>

#include "adapters/line/modem/at_channel.h"

namespace orven {

/// A link over a serial port or pseudo-terminal, on the Qt event loop of the calling thread. Uses hardware
/// flow control (CRTSCTS) only on ports that have the wires; ignores a dropped carrier (CLOCAL).
std::unique_ptr<ModemLink> MakeSerialLink();

}  // namespace orven
