// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>
#include <vector>

namespace orven {

/// An output or an input of the sound server.
struct SoundDevice {
  std::string id;           ///< the server's name for it: the same each time it is connected
  std::string description;  ///< for people
  std::string card = {};    ///< identifies its physical card; empty: none
  bool connected = true;    ///< false when it is known that nothing is plugged in
};

/// The sound server's devices at one moment.
struct SoundDevices {
  std::string default_output;  ///< its id
  std::string default_input;
  std::vector<SoundDevice> outputs;

  /// Microphones and other real inputs. The monitor of an output (what is played there) is not one, even if
  /// the server makes it the default for lack of another.
  std::vector<SoundDevice> inputs;
};

/// The output with this id; nullptr when there is none.
const SoundDevice* OutputOf(const SoundDevices& devices, const std::string& id);

/// The input to use with `output`: a connected one of the same physical card (of several, the desktop's
/// default). Without one, and for an empty `output`, the desktop's default input, or the first connected one
/// if the default is not an input. nullptr when there is none.
const SoundDevice* MicrophoneOf(const SoundDevices& devices, const std::string& output);

}  // namespace orven
