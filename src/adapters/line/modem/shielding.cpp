// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/line/modem/shielding.h"

#include <algorithm>

namespace orven {

void AppendShielded(std::span<const std::uint8_t> sound, std::vector<std::uint8_t>& out) {
  auto rest = sound.begin();
  while (rest != sound.end()) {
    const auto dle = std::find(rest, sound.end(), kDle);
    out.insert(out.end(), rest, dle);
    if (dle == sound.end()) return;
    out.insert(out.end(), 2, kDle);
    rest = dle + 1;
  }
}

}  // namespace orven
