// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <string>

#include "base/paths.h"
#include "core/activity_log.h"
#include "platform/wave.h"

namespace orven {

/// A take from the microphone. It shares the recorder `Wave1` with the line, which has priority. Each step is
/// logged. User-interface thread.
class MicrophoneTake {
 public:
  struct Parts {
    WaveControl& Wave1;
    SystemLog& log;
    const ApplicationFolder& home;
    std::function<bool()> line_in_use;  ///< a call is connected and may be recorded at any moment
  };

  explicit MicrophoneTake(Parts parts) : parts_(std::move(parts)) {}

  /// `interrupted` is called when the line takes the recorder; `kept` says whether the take was stored. May
  /// be null.
  void SetInterrupted(std::function<void(bool kept)> interrupted) { interrupted_ = std::move(interrupted); }

  /// The recorder is in use, or a call may need it at any moment.
  bool Busy() const { return parts_.Wave1.IsRecording() || parts_.line_in_use(); }

  /// Starts a take from sound card `device`, or from the default card if that one is missing. A wave result.
  std::int32_t Start(std::int32_t device);

  /// Ends the take and stores it at Path. A wave result; after a failure no take exists.
  std::int32_t Stop();

  /// A take is being recorded.
  bool Recording() const { return recording_ && parts_.Wave1.IsRecording(); }

  /// In thousandths of full scale; 0 when no take is being recorded.
  std::int32_t Level() const {
    return Recording() ? parts_.Wave1.InputLevel(std::chrono::milliseconds(0)) : 0;
  }

  /// The line needs the recorder: stops a take and calls `interrupted`.
  void MakeWay();

  std::string Path() const { return parts_.home.Path("\\spktmp.wav"); }

 private:
  Parts parts_;
  std::function<void(bool)> interrupted_;
  bool recording_ = false;
};

}  // namespace orven
