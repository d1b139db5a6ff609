// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/line/sip/inband_digits.h"

#include <spandsp.h>

#include <array>
#include <cstddef>
#include <utility>

namespace orven {

InbandDigits::InbandDigits(std::function<void(char)> heard)
    : heard_(std::move(heard)), state_(dtmf_rx_init(nullptr, nullptr, nullptr)) {}

void InbandDigits::Release::operator()(dtmf_rx_state_s* state) const {
  dtmf_rx_free(state);
}

void InbandDigits::Listen(std::span<const std::int16_t> block) {
  dtmf_rx(state_.get(), block.data(), static_cast<int>(block.size()));
  std::array<char, MAX_DTMF_DIGITS + 1> digits{};
  const std::size_t count = dtmf_rx_get(state_.get(), digits.data(), MAX_DTMF_DIGITS);
  for (std::size_t i = 0; i < count; ++i) heard_(digits[i]);
}

}  // namespace orven
