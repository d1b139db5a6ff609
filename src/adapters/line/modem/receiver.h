// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <span>
#include <vector>

#include "adapters/line/modem/hang_up_sound.h"
#include "adapters/line/modem/sample_codec.h"
#include "adapters/line/service/line_audio.h"

namespace orven {

/// What the caller says, from the modem's bytes to the blocks that are recorded. Not for use by several
/// threads.
class Receiver {
 public:
  /// `hung_up` is told once at most, within Sound, what was heard of the caller's hanging up.
  Receiver(VoiceFormat format, LineAudio& audio, std::function<void(const char*)> hung_up)
      : format_(std::move(format)), audio_(audio), hang_up_(std::move(hung_up)) {}

  /// A new stretch of sound begins.
  void Begin() { decoder_.emplace(format_); }

  void Sound(std::span<const std::uint8_t> bytes);

 private:
  const VoiceFormat format_;
  LineAudio& audio_;
  HangUpSound hang_up_;
  std::optional<SampleDecoder> decoder_;
  std::vector<std::int16_t> samples_;  ///< less than a block, and what is being added
};

}  // namespace orven
