// SPDX-License-Identifier: GPL-3.0-or-later
#include "notify/desk_sounds.h"

namespace orven {

void DeskSounds::PlayWave(const std::string& path) {
  if (player_.IsPlaying()) player_.Stop();
  const auto result = WavePlay_.PlayFile(path, settings_.Sound);
  if (result != kWaveOk) log_.WriteSystem("Play Sound " + WavePlay_.PlayErrorText(result));
}

}  // namespace orven
