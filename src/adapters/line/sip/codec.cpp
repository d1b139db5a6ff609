// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/line/sip/codec.h"

#include <spandsp.h>

#include <algorithm>
#include <iterator>

namespace orven {

int ClockRate(Codec /*codec*/) {
  return 8000;
}

std::size_t SamplesIn(Codec /*codec*/, std::span<const std::uint8_t> payload) {
  return payload.size();
}

void Decoder::Decode(Codec codec, std::span<const std::uint8_t> payload, std::vector<std::int16_t>& samples) {
  if (codec == Codec::kMuLaw) {
    std::transform(payload.begin(), payload.end(), std::back_inserter(samples), ulaw_to_linear);
  } else {
    std::transform(payload.begin(), payload.end(), std::back_inserter(samples), alaw_to_linear);
  }
}

void Encode(Codec codec, std::span<const std::int16_t> samples, std::uint8_t* bytes) {
  std::transform(samples.begin(), samples.end(), bytes, [codec](std::int16_t sample) {
    return codec == Codec::kMuLaw ? linear_to_ulaw(sample) : linear_to_alaw(sample);
  });
}

}  // namespace orven
