// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/sound/sound_devices.h"

#include <algorithm>

namespace orven {
namespace {

const SoundDevice* DefaultMicrophone(const SoundDevices& devices) {
  const SoundDevice* found = nullptr;
  for (const SoundDevice& input : devices.inputs) {
    if (input.id == devices.default_input) return &input;
    if (found == nullptr && input.connected) found = &input;
  }
  return found;
}

}  // namespace

const SoundDevice* OutputOf(const SoundDevices& devices, const std::string& id) {
  const auto found = std::ranges::find(devices.outputs, id, &SoundDevice::id);
  return found == devices.outputs.end() ? nullptr : &*found;
}

const SoundDevice* MicrophoneOf(const SoundDevices& devices, const std::string& output) {
  const SoundDevice* const beside = OutputOf(devices, output);
  if (beside == nullptr || beside->card.empty()) return DefaultMicrophone(devices);
  const SoundDevice* found = nullptr;
  for (const SoundDevice& input : devices.inputs) {
    if (input.card != beside->card || !input.connected) continue;
    if (found == nullptr || input.id == devices.default_input) found = &input;
  }
  return found == nullptr ? DefaultMicrophone(devices) : found;
}

}  // namespace orven
