// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "adapters/line/sip/libre.h"

namespace orven {

/// The session description in the body of `message`: the body itself, or the part of a multipart body
/// (RFC 5621) that is one. A body whose kind is not told is taken for one. Nothing when it has none.
std::optional<std::string> DescriptionIn(const sip_msg& message);

/// `text` without what the library refuses a whole description for although nobody here reads it:
/// lines that are none, attributes of media that are not audio, bandwidths, attributes without their
/// value. Every line ends in CR LF, the last one too.
std::string MendDescription(std::string_view text);

}  // namespace orven
