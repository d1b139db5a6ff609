// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <span>

struct dtmf_rx_state_s;

namespace orven {

/// Hears touch tones (ITU-T Q.23) in the received sound, which it leaves as it is. Not for use by
/// several threads.
class InbandDigits {
 public:
  /// `heard` is called within Listen, once for each tone, some 50 ms after its beginning.
  explicit InbandDigits(std::function<void(char)> heard);

  void Listen(std::span<const std::int16_t> block);

 private:
  struct Release {
    void operator()(dtmf_rx_state_s* state) const;
  };

  std::function<void(char)> heard_;
  std::unique_ptr<dtmf_rx_state_s, Release> state_;
};

}  // namespace orven
