// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <samplerate.h>

#include <cstdint>
#include <memory>
#include <span>
#include <vector>

#include "modem_emulator/modem_profile.h"

namespace orven::emulator {

inline constexpr int kLineRate = 8000;  ///< samples a second of the telephone line

std::size_t BytesPerSample(ModemCoding coding);
/// Appends one sample in that coding; 16 bits have their low byte first.
void WriteSample(ModemCoding coding, std::int16_t sample, std::vector<std::uint8_t>& bytes);
/// Of the first bytes behind `bytes`.
std::int16_t ReadSample(ModemCoding coding, const std::uint8_t* bytes);

/// Brings a stream of samples from one rate to another; untouched where both are the same.
class RateChange {
 public:
  RateChange(int from, int to);

  /// Appends to `out`. Some samples are held back until later calls; `last` gives these, too.
  void Process(std::span<const std::int16_t> in, bool last, std::vector<std::int16_t>& out);

 private:
  struct Delete {
    void operator()(SRC_STATE* state) const { src_delete(state); }
  };
  double ratio_;
  std::unique_ptr<SRC_STATE, Delete> state_;  ///< none when both rates are the same
};

}  // namespace orven::emulator
