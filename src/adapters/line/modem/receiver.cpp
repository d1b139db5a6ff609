// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/line/modem/receiver.h"

namespace orven {

void Receiver::Sound(std::span<const std::uint8_t> bytes) {
  if (!decoder_) Begin();
  decoder_->Decode(bytes, samples_);
  std::span<const std::int16_t> left(samples_);
  for (; left.size() >= kBlockSamples; left = left.subspan(kBlockSamples)) {
    const auto block = left.first(kBlockSamples);
    audio_.Deliver(block);
    hang_up_.Listen(block);
  }
  samples_.erase(samples_.begin(), samples_.end() - static_cast<std::ptrdiff_t>(left.size()));
}

}  // namespace orven
