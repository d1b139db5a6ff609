// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/line/sip/g711.h"

#include <spandsp.h>

#include <algorithm>

namespace orven {

std::vector<std::int16_t> Decode(Codec codec, std::span<const std::uint8_t> bytes) {
  std::vector<std::int16_t> samples(bytes.size());
  std::transform(bytes.begin(), bytes.end(), samples.begin(), [codec](std::uint8_t byte) {
    return codec == Codec::kMuLaw ? ulaw_to_linear(byte) : alaw_to_linear(byte);
  });
  return samples;
}

void Encode(Codec codec, std::span<const std::int16_t> samples, std::uint8_t* bytes) {
  std::transform(samples.begin(), samples.end(), bytes, [codec](std::int16_t sample) {
    return codec == Codec::kMuLaw ? linear_to_ulaw(sample) : linear_to_alaw(sample);
  });
}

}  // namespace orven
