// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string_view>
#include <vector>

#include "adapters/line/sip/codec.h"

namespace orven {

/// The codecs of a list like "g722, pcmu". Empty unless it names one or more, each once.
std::vector<Codec> ReadCodecs(std::string_view list);

}  // namespace orven
