// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>

#include "core/activity_log.h"
#include "core/settings.h"
#include "platform/wave.h"
#include "records/call_store.h"
#include "telephony/call_effects.h"

namespace orven {

/// Plays sounds on the sound card that messages are played on: one of them at a time. A sound that
/// cannot be played is logged. User-interface thread.
class DeskSounds : public EventSounds {
 public:
  /// `player` owns what `WavePlay` may be playing.
  DeskSounds(WaveControl& WavePlay, MessagePlayer& player, const Settings& settings, SystemLog& log)
      : WavePlay_(WavePlay), player_(player), settings_(settings), log_(log) {}

  void PlayWave(const std::string& path) override;

 private:
  WaveControl& WavePlay_;
  MessagePlayer& player_;
  const Settings& settings_;
  SystemLog& log_;
};

}  // namespace orven
