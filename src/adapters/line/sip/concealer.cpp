// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/line/sip/concealer.h"

#include <algorithm>
#include <array>
#include <iterator>

namespace orven {
namespace {

/// The library always writes the whole overlap with the earlier audio (up to 30 samples), even if fewer are
/// requested.
constexpr std::size_t kPiece = 160;

}  // namespace

void Concealer::Conceal(std::size_t count, std::vector<std::int16_t>& samples) {
  while (count > 0) {
    // The library would rotate its history itself, by a memcpy between ranges that may overlap.
    std::rotate(std::begin(state_.history), std::begin(state_.history) + state_.buf_ptr,
                std::end(state_.history));
    state_.buf_ptr = 0;
    const std::size_t piece = std::min(count, kPiece);
    std::array<std::int16_t, kPiece> made_up{};
    plc_fillin(&state_, made_up.data(), static_cast<int>(piece));
    samples.insert(samples.end(), made_up.begin(), made_up.begin() + static_cast<std::ptrdiff_t>(piece));
    count -= piece;
  }
}

}  // namespace orven
