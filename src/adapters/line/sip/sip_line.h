// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <memory>

#include "adapters/line/sip/sip_line_settings.h"
#include "platform/line_driver.h"

namespace orven {

/// A line that answers SIP calls (RFC 3261) with G.711 sound (RFC 3551): called directly at its
/// address, or through the account at which it registers. One call at a time; a second caller hears
/// the busy tone.
///
/// While open it owns one thread, on which all of its events are raised and the audio device's source
/// and sink are called. Open fails with kTelephonyLineInUse when the address is taken, with
/// kTelephonyDeviceFailed for a wrong address or account; LastError names it and says why.
///
/// Connected is raised when the caller's acknowledgement or the first sound from there arrives,
/// whichever comes first: from then on the caller hears, so that a greeting started now is heard from
/// its beginning, and a lost acknowledgement costs no message.
std::unique_ptr<LineDriver> MakeSipLine(const SipLineSettings& settings);

}  // namespace orven
