// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "adapters/line/sip/caller_identity.h"
#include "adapters/line/sip/libre.h"

namespace orven {

/// Header line that names the methods we understand (RFC 3261, section 20.5).
inline constexpr const char* kAllowHeader = "Allow: INVITE, ACK, BYE, CANCEL, OPTIONS, INFO\r\n";

/// Who calls, from the headers of an INVITE.
CallerIdentity CallerOf(const sip_msg& invite);

/// Checks that a request carries what every request must (RFC 3261, section 8.1.1), before anything
/// is made of it. True when it is sound; otherwise it has been answered with a 4xx, or dropped where
/// no answer is possible.
bool IsSoundRequest(sip& stack, const sip_msg& request);

/// Widens a UDP socket of `stack` that listens at `address`, so that a request of more than the library's
/// 8 KB is read whole. The library names the socket only by what comes through it: a probe of our own,
/// which is sent here and which TakeProbe takes. Nothing is lost when it does not arrive.
void ProbeSocket(sip& stack, const sa& address);

/// True when `request` was a probe.
bool TakeProbe(const sip_msg& request);

/// Answers a request outside of any call that is no call itself: OPTIONS with what we can do, all
/// other methods with 405.
void AnswerOtherRequest(sip& stack, const sip_msg& request);

}  // namespace orven
