// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "platform/clock.h"
#include "platform/line_driver.h"
#include "platform/wave.h"
#include "telephony/after_call.h"
#include "telephony/call_control.h"
#include "telephony/recorder.h"
#include "telephony/remote_access.h"

namespace orven {

/// What happens on each event of a call, from the first ring to the idle line, and when a file has been
/// played to the caller: after the greeting comes the beep, after the beep the recording; in administrator
/// mode one message follows the other. A file that cannot be played is logged and counts as played: a missing
/// greeting must never cost the caller the message. User-interface thread.
class CallSequence : public WaveEvents {
 public:
  struct Parts {
    Recorder& recorder;
    RemoteAccess& remote;
    AfterCall& after_call;
    LineView& view;
    CallerView& caller_view;
    Clock& clock;
  };

  CallSequence(CallControl& control, Parts parts) : control_(control), parts_(parts) {}

  /// An event of the telephony control.
  void Handle(const LineEvent& event);

  /// The line's wave control has played a file to its end.
  void PlayFinished() override;

 private:
  void InCommingCall(std::int32_t line);
  void Ring(std::int32_t line, std::int32_t count);
  void CallerID(std::int32_t line, const std::string& name, const std::string& number);
  void Diverted(std::int32_t line, const std::string& from, const std::string& reason);
  void Proc(std::int32_t line, std::int32_t request, std::int32_t result);
  void Connected(std::int32_t line);
  void Disconnected(std::int32_t line);
  void Idle(std::int32_t line);
  void PlayGreeting();
  void PlayBeep();
  std::int32_t PlayOnLine(const std::string& path);
  void UpdateCallerView(const Words& status);

  CallControl& control_;
  Parts parts_;
  std::uint32_t calls_ = 0;
};

}  // namespace orven
