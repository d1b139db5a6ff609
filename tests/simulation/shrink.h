// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <algorithm>
#include <cstddef>
#include <vector>

namespace orven::test {

/// The shortest sequence that is left when pieces of `all` are taken out as long as `fails` of the rest:
/// halves, quarters and so on down to single elements (delta debugging). It fails, and it does not when any
/// one of its elements is taken out as well. `all` itself fails.
template <class Element, class Fails>
std::vector<Element> Shrink(std::vector<Element> all, Fails fails) {
  auto piece = std::max<std::size_t>(all.size() / 2, 1);
  while (!all.empty()) {
    bool shorter = false;
    for (std::size_t begin = 0; begin < all.size();) {
      const auto end = std::min(begin + piece, all.size());
      auto rest = all;
      rest.erase(rest.begin() + static_cast<std::ptrdiff_t>(begin),
                 rest.begin() + static_cast<std::ptrdiff_t>(end));
      if (fails(rest)) {
        all = std::move(rest);
        shorter = true;
      } else {
        begin = end;
      }
    }
    if (piece == 1 && !shorter) break;
    if (!shorter || piece > all.size()) piece = std::max<std::size_t>(std::min(piece, all.size()) / 2, 1);
  }
  return all;
}

}  // namespace orven::test
