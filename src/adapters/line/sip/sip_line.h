// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <memory>

#include "adapters/line/sip/sip_line_settings.h"
#include "platform/line_driver.h"

namespace orven {

/// A line that answers SIP calls (RFC 3261) with G.711 audio (RFC 3551): called directly at its address, or
/// through its account. One call at a time; a second caller hears the busy tone.
///
/// While open it owns one thread, on which it raises all events and calls the audio device's source and sink.
/// Open fails with kTelephonyLineInUse when the address is in use, with kTelephonyDeviceFailed for a wrong
/// address, or when it has accounts and none can be used; the reason names it. One account that cannot be
/// used is news of its registration, and trouble.
///
/// Connected is raised when the caller's ACK or first audio arrives, whichever is first: from then on the
/// caller hears us, so a greeting is heard from its beginning, and a lost ACK costs no message.
std::unique_ptr<LineDriver> MakeSipLine(const SipLineSettings& settings);

}  // namespace orven
