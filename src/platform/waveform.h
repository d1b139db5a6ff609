// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <chrono>
#include <functional>
#include <string>
#include <vector>

namespace orven {

/// A sound file as a picture: the loudest sample of each of many equal stretches, from its beginning.
struct Waveform {
  std::vector<float> peaks;  ///< 0 (silence) to 1 (full scale); empty when there is nothing to show
  std::chrono::milliseconds length{0};
};

/// Draws up waveforms away from the user-interface thread. One request at a time: a new one replaces
/// the one before. User-interface thread.
class WaveformReader {
 public:
  /// Takes the result; empty for a file that cannot be read.
  using Done = std::function<void(const Waveform&)>;

  virtual ~WaveformReader() = default;

  /// Reads the sound file at `path` and calls `done`, later, unless another Request or Cancel comes
  /// before that.
  virtual void Request(const std::string& path, Done done) = 0;

  /// Forgets the request under way, if any.
  virtual void Cancel() = 0;
};

}  // namespace orven
