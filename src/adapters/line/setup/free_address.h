// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <optional>
#include <string>
#include <vector>

namespace orven {

/// Why no line can wait for calls at `listen` now, an errno value: EADDRINUSE, EADDRNOTAVAIL (not an address
/// of this computer) and so on; 0 if one can. `ours` are the addresses at which this program waits: what they
/// hold counts as free. All must be readable by ParseListen; for a name all of the computer's addresses are
/// tried. Returns at once. Any thread.
int ErrorAt(const std::string& listen, const std::vector<std::string>& ours = {});

/// `listen` with the first port from its own on that is free for UDP and TCP; nothing when there is none.
std::optional<std::string> NextFree(const std::string& listen, const std::vector<std::string>& ours = {});

}  // namespace orven
