// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <chrono>
#include <string>

namespace orven {

/// What the sound server says of itself.
struct SoundServer {
  enum class State {
    None,    ///< there is none, or it takes no connection
    Silent,  ///< it does not answer in time
    Ready,
  };
  State state = State::None;
  std::string default_output;  ///< the id of the desktop's default output; only when Ready
};

/// Asks the sound server (PulseAudio's protocol, which PipeWire speaks too), starting it where the desktop
/// is set up so. Returns within `limit`; usually after 1 to 3 ms. Any thread.
///
/// Needed beside Qt Multimedia, because Qt 6.4 waits for a hanging server without limit, never asks
/// again once it found none, and does not notice when the desktop's default output changes.
SoundServer AskSoundServer(std::chrono::milliseconds limit);

}  // namespace orven
