// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <chrono>
#include <string>
#include <vector>

namespace orven {

/// What the sound server says of itself.
struct SoundServer {
  enum class State {
    None,    ///< there is none, or it takes no connection
    Silent,  ///< it does not answer in time
    Ready,
  };

  struct Output {
    std::string id;
    std::string card;  ///< the physical card it belongs to, in a form to compare; empty: none
  };

  /// Something that records sound of its own. What is played on an output (its monitor) is no input, also
  /// where the server makes it the default for want of another: Qt does not record it, and nobody speaks
  /// there.
  struct Input {
    std::string id;
    std::string card;
    bool connected = true;  ///< false when its socket is known to be empty
  };

  State state = State::None;
  std::string default_output;  ///< id of the desktop's default output; this and the rest only when Ready
  std::string default_input;
  std::vector<Output> outputs;
  std::vector<Input> inputs;
};

/// Asks the sound server (PulseAudio's protocol, which PipeWire speaks too), starting it where the desktop
/// is set up so. Returns within `limit`; usually after 1 to 3 ms. Any thread.
///
/// Needed beside Qt Multimedia, because Qt 6.4 waits for a hanging server without limit, never asks
/// again once it found none, does not notice when the desktop's default output or input changes, and
/// does not tell which of them belong to one card.
SoundServer AskSoundServer(std::chrono::milliseconds limit);

/// The id of the input to record from beside `output`: a connected one of the same physical card, the
/// desktop's default one among several; else, and for an empty `output`, the desktop's default input, or
/// the first connected one when the default is none. Empty when there is none.
std::string MicrophoneOf(const SoundServer& server, const std::string& output);

}  // namespace orven
