// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "adapters/line/sip/libre.h"

namespace orven {

/// The session description in the body of `message`: the body itself, or the part of a multipart body
/// (RFC 5621) that is one. A body without a Content-Type counts as one. Nothing when there is none.
std::optional<std::string> DescriptionIn(const sip_msg& message);

/// `text` without the irrelevant parts that make the library refuse a whole description: malformed lines,
/// attributes of other media than audio, bandwidths, attributes without their value, the number of ports. The
/// library takes the first audio stream whose protocol it knows, even if it is rejected ("m=audio 0 RTP/AVP
/// 0"): the protocol of a rejected one before a usable one becomes lower case, which the library does not
/// know. Every line ends in CR LF, the last one too.
std::string MendDescription(std::string_view text);

/// Makes those protocols upper case again in `text`, the library's answer to a description from
/// MendDescription.
void RestoreProtocols(std::span<char> text);

}  // namespace orven
