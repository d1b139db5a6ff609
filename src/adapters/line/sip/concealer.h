// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <spandsp.h>

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace orven {

/// Makes up lost audio from the audio before it; after 50 ms without any it makes up silence. For one thread.
class Concealer {
 public:
  Concealer() { Restart(); }

  /// Forgets the audio so far, which must not affect what follows a pause.
  void Restart() { plc_init(&state_); }

  /// Takes audio that was received. Its first samples are blended with what was made up before it.
  void Follow(std::span<std::int16_t> samples) {
    plc_rx(&state_, samples.data(), static_cast<int>(samples.size()));
  }

  /// Appends `count` samples that were made up.
  void Conceal(std::size_t count, std::vector<std::int16_t>& samples);

 private:
  plc_state_t state_{};
};

}  // namespace orven
