// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "adapters/line/sip/libre.h"

namespace orven {

/// That a call was for somebody else first.
struct Diversion {
  std::string from;    ///< whose call it was, a number or name; empty: withheld
  std::string reason;  ///< in a few plain words; empty: not told
};

/// The latest diversion in the values of Diversion (RFC 5806), else in those of History-Info (RFC 7044).
/// Nothing when there is none. The texts are valid UTF-8 and a stranger's.
std::optional<Diversion> DiversionIn(const std::vector<std::string_view>& diversions,
                                     const std::vector<std::string_view>& history);

/// The same from an INVITE.
std::optional<Diversion> DiversionIn(const sip_msg& invite);

}  // namespace orven
