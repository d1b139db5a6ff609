// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "platform/wave.h"
#include "telephony/call_control.h"
#include "telephony/recorder.h"
#include "telephony/remote_access.h"

namespace orven {

/// What the caller hears, in order: greeting, beep, then the recording takes over; in administrator
/// mode one message after another. A sound that cannot be played is logged and counts as played: a
/// missing greeting must never cost the caller the message. User-interface thread.
class Greeter : public WaveEvents {
 public:
  Greeter(CallContext& context, CallControl& control, Recorder& recorder, RemoteAccess& remote)
      : context_(context), control_(control), recorder_(recorder), remote_(remote) {}

  /// Plays the greeting on the line.
  void PlayGreeting();

  /// The line's wave control has played a file to its end.
  void PlayFinished() override;

 private:
  void PlayBeep();
  std::int32_t PlayOnLine(const std::string& path);

  CallContext& context_;
  CallControl& control_;
  Recorder& recorder_;
  RemoteAccess& remote_;
};

}  // namespace orven
