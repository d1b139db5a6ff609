// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "adapters/line/sip/libre.h"

namespace orven {

/// Reads "127.0.0.1:5060" or "[::1]:5060"; nothing when it is no address with a port from 1 to 65535.
std::optional<sa> ParseListenAddress(const std::string& text);

/// The addresses that `listen` stands for at this moment: itself, or all of this machine's whose network is
/// connected when it is 0.0.0.0 or [::], those that lead to others first. The SIP library needs each by
/// itself, since it tells a peer the address at which it listens.
std::vector<sa> ExpandListenAddress(const sa& listen);

}  // namespace orven
