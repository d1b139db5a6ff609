// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <functional>
#include <string>

#include "core/activity_log.h"
#include "core/settings.h"
#include "platform/wave.h"

namespace orven {

/// A take from the microphone, made with the recorder that the line has, too (`Wave1`): the line comes
/// first. Each step is logged. User-interface thread.
class MicrophoneTake {
 public:
  struct Parts {
    WaveControl& Wave1;
    SystemLog& log;
    const SharedOptions& shared;
    std::function<bool()> line_in_use;  ///< a call is connected: its message may begin at any moment
  };

  explicit MicrophoneTake(Parts parts) : parts_(std::move(parts)) {}

  /// Hears that the line took the recorder, and whether the take could be kept; nullptr: nobody.
  void SetInterrupted(std::function<void(bool kept)> interrupted) { interrupted_ = std::move(interrupted); }

  /// The recorder is at work, for whomever, or a call may need it at any moment.
  bool Busy() const { return parts_.Wave1.IsRecording() || parts_.line_in_use(); }

  /// Starts a take from the input of sound card `device`, or of the desktop's default one where that card
  /// is not there. A wave result.
  std::int32_t Start(std::int32_t device);

  /// Ends the take; it is at Path then. A wave result; after a failure no take is there.
  std::int32_t Stop();

  /// A take is being made.
  bool Recording() const { return recording_ && parts_.Wave1.IsRecording(); }

  /// In thousandths of full scale; 0 when no take is being made.
  std::int32_t Level() const { return Recording() ? parts_.Wave1.InputLevel() : 0; }

  /// The line needs the recorder: ends a take, as Stop does, and says so.
  void MakeWay();

  std::string Path() const { return parts_.shared.InApplicationFolder("\\spktmp.wav"); }

 private:
  Parts parts_;
  std::function<void(bool)> interrupted_;
  bool recording_ = false;
};

}  // namespace orven
