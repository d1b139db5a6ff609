// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <span>

#include "adapters/sound/card_use.h"
#include "platform/audio_device.h"

namespace orven {

/// One take from a sound card's microphone into one sink. Any thread.
class CardTake : public CardUse<AudioSink> {
 public:
  using CardUse::CardUse;

  /// Hands the sink its next block. False when the take is over.
  bool Write(std::span<const std::int16_t> block);

  /// Ends the take, as no more blocks will come. False when it was over already.
  bool Fail();
};

}  // namespace orven
