// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <span>

#include "adapters/sound/card_use.h"
#include "platform/audio_device.h"

namespace orven {

/// One play of one source on a sound card. Any thread.
class CardPlay : public CardUse<AudioSource> {
 public:
  enum class Got { Block, End, Stopped };

  using CardUse::CardUse;

  /// The next block: Block; End when the source has none left (once); Stopped when the play is over.
  Got Read(std::span<std::int16_t> block);

  /// Ends the play and tells the source so. False when it was over already.
  bool Fail();
};

}  // namespace orven
