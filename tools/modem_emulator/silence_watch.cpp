// SPDX-License-Identifier: GPL-3.0-or-later
#include "modem_emulator/silence_watch.h"

#include <cstdlib>

namespace orven::emulator {
namespace {

constexpr int kSilent = 328;  // a hundredth of full scale

}  // namespace

std::optional<char> SilenceWatch::Put(std::span<const std::int16_t> samples) {
  std::optional<char> report;
  for (const auto sample : samples) {
    if (std::abs(sample) > kSilent) {
      silent_ = 0;
      heard_ = true;
    } else if (++silent_ == enough_) {
      report = heard_ ? 'q' : 's';
    }
  }
  return report;
}

}  // namespace orven::emulator
