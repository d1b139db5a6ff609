// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/line/config/codec_list.h"

#include <algorithm>

#include "base/text.h"

namespace orven {

std::vector<Codec> ReadCodecs(std::string_view list) {
  std::vector<Codec> codecs;
  for (const std::string& part : Split(Lower(list), ',')) {
    const auto found = std::ranges::find_if(
        kCodecs, [&part](const auto& one) { return Lower(one.second) == Trimmed(part); });
    if (found == kCodecs.end() || std::ranges::count(codecs, found->first) > 0) return {};
    codecs.push_back(found->first);
  }
  return codecs;
}

}  // namespace orven
