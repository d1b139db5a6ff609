// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <chrono>
#include <string>
#include <vector>

namespace orven {

/// The sound server, its outputs and inputs.
struct SoundServer {
  enum class State {
    None,    ///< no server runs, or it refuses connections
    Silent,  ///< it does not answer in time
    Ready,
  };

  struct Output {
    std::string id;
    std::string card;  ///< identifies its physical card; empty: none
  };

  /// A microphone or another real input. The monitor of an output is not one, even if the server makes it the
  /// default for lack of another: Qt cannot record it.
  struct Input {
    std::string id;
    std::string card;
    bool connected = true;  ///< false when it is known that nothing is plugged in
  };

  State state = State::None;
  std::string default_output;  ///< its id; this and the rest only when Ready
  std::string default_input;
  std::vector<Output> outputs;
  std::vector<Input> inputs;
};

/// Asks the sound server for its devices, over PulseAudio's protocol, which PipeWire speaks too. Starts the
/// server if the desktop is configured so. Returns within `limit`, usually after 1 to 3 ms. Any thread.
///
/// Needed in addition to Qt Multimedia, because Qt 6.4 waits for a hanging server without limit, never asks
/// again after it found none, does not notice when the desktop's default output or input changes, and does
/// not report which of them belong to one card.
SoundServer AskSoundServer(std::chrono::milliseconds limit);

/// The id of the input to use with `output`: a connected one of the same physical card (of several, the
/// desktop's default). Without one, and for an empty `output`, the desktop's default input, or the first
/// connected one if the default is not an input. Empty when there is none.
std::string MicrophoneOf(const SoundServer& server, const std::string& output);

}  // namespace orven
