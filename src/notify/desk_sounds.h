// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>

#include "core/activity_log.h"
#include "core/settings.h"
#include "platform/wave.h"
#include "records/call_store.h"

namespace orven {

/// Plays the sounds of events, one at a time, on the sound card that plays messages. A sound that cannot be
/// played is logged. User-interface thread.
class DeskSounds {
 public:
  /// `player` owns what `WavePlay` may be playing.
  DeskSounds(WaveControl& WavePlay, MessagePlayer& player, const Settings& settings, SystemLog& log)
      : WavePlay_(WavePlay), player_(player), settings_(settings), log_(log) {}

  /// Plays the file at `path`, stopping what plays on the sound card.
  void PlayWave(const std::string& path);

 private:
  WaveControl& WavePlay_;
  MessagePlayer& player_;
  const Settings& settings_;
  SystemLog& log_;
};

}  // namespace orven
