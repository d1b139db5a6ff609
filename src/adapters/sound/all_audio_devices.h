// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>

#include "platform/audio_device.h"

namespace orven {

/// Every wave device of the program: the lines' and the sound cards'.
class AllAudioDevices : public AudioDevices {
 public:
  /// Both outlive this object.
  AllAudioDevices(AudioDevices& lines, AudioDevices& cards) : lines_(lines), cards_(cards) {}

  AudioDevice* Find(std::int32_t number) override {
    return number >= kFirstLineWaveDevice ? lines_.Find(number) : cards_.Find(number);
  }

 private:
  AudioDevices& lines_;
  AudioDevices& cards_;
};

}  // namespace orven
