// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "adapters/line/sip/libre.h"

namespace orven {

/// The session description in the body of `message`: the body itself, or the part of a multipart body
/// (RFC 5621) that is one. A body whose kind is not told is taken for one. Nothing when it has none.
std::optional<std::string> DescriptionIn(const sip_msg& message);

/// `text` without what the library refuses a whole description for although nobody here reads it:
/// lines that are none, attributes of media that are not audio, bandwidths, attributes without their
/// value, the number of ports. The library takes the first audio stream whose protocol it knows, wanted
/// or not: one that is not wanted ("m=audio 0 RTP/AVP 0") before one that is has its protocol in small
/// letters, which the library does not know. Every line ends in CR LF, the last one too.
std::string MendDescription(std::string_view text);

/// Back to large letters in `text`, a description of the library's that answers a mended one.
void RestoreProtocols(std::span<char> text);

}  // namespace orven
