// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>

#include "adapters/line/sip/sip_line_settings.h"

namespace orven {

/// Why the server of the account of `line` cannot be asked, in words that begin in lower case and end
/// without a full stop: for the log, for the list of lines and for their test alike. `error` is the errno
/// value that the way to the server ended with; `refusal` tells why its certificate was not accepted, or is
/// empty. Any thread.
std::string NetworkWords(const SipLineSettings& line, int error, const std::string& refusal);

}  // namespace orven
