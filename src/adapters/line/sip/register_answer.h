// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <chrono>
#include <optional>
#include <string>

#include "adapters/line/sip/libre.h"

namespace orven {

/// The seconds in the first header `id` of `response`; nothing unless it begins with digits.
std::optional<std::chrono::seconds> SecondsIn(const sip_msg& response, sip_hdrid id);

/// The lifetime that a registrar granted our binding `contact`, a URI, when we asked for `asked` (RFC 3261,
/// section 10.2.4); 0 when it keeps none. It also lists the account's other telephones: their shortest
/// lifetime counts if ours cannot be recognised.
std::chrono::seconds GrantedLife(const sip_msg& response, const std::string& contact,
                                 std::chrono::seconds asked);

/// The address from which the server got our request (RFC 3261, section 18.2.1; RFC 3581), if it says so and
/// that is not `own`, where we listen; unset if it is. Each connection has its own port, so over TCP only
/// another address counts. Over TLS the port does, too: without a certificate of our own, calls come only
/// through the connection. Nothing when the server does not say.
std::optional<sa> SeenAddress(const sip_msg& response, const sa& own);

}  // namespace orven
