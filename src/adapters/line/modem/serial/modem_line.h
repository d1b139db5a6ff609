// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <memory>

#include "adapters/line/modem/modem_line_settings.h"
#include "platform/clock.h"
#include "platform/line_driver.h"

namespace orven {

/// A line at a voice modem (ITU-T V.253, service class 8). While open it owns one thread, on which all of its
/// events are raised and the audio device's source and sink are called.
///
/// Open succeeds also when the modem is not there, or another program has it: it is used as soon as it can
/// be, and what is wrong meanwhile is told as Trouble. It fails with kTelephonyDeviceFailed when its owner
/// may not use the port. The modem transmits or receives: while something plays, a recording gets silence.
/// `clock` outlives the line.
std::unique_ptr<LineDriver> MakeModemLine(ModemLineSettings settings, const Clock& clock);

}  // namespace orven
