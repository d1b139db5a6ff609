// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "platform/clock.h"
#include "platform/telephony.h"
#include "telephony/after_call.h"
#include "telephony/call_control.h"
#include "telephony/greeter.h"
#include "telephony/recorder.h"
#include "telephony/remote_access.h"

namespace orven {

/// What happens on each event of the telephony control, from the first ring to the idle line. Each
/// handler logs its step first; what it sets off is carried out by the classes it is given.
/// User-interface thread.
class CallSequence : public TelephonyEvents {
 public:
  struct Parts {
    CallControl& control;
    Greeter& greeter;
    Recorder& recorder;
    RemoteAccess& remote;
    AfterCall& after_call;
    LineView& view;
    CallerView& caller_view;
    Clock& clock;
  };

  CallSequence(CallContext& context, Parts parts) : context_(context), parts_(parts) {}

  void InCommingCall(std::int32_t line, const CallInformation& call) override;
  void Ring(std::int32_t line, std::int32_t count) override;
  void CallerID(std::int32_t line, const std::string& name, const std::string& number) override;
  void Trouble(std::int32_t line, const std::string& text) override;
  void Proc(std::int32_t line, std::int32_t request, std::int32_t result) override;
  void Connected(std::int32_t line) override;
  void MonitorDigit(std::int32_t line, char digit) override;
  void Disconnected(std::int32_t line) override;
  void Idle(std::int32_t line) override;

 private:
  void UpdateCallerView(const std::string& status);

  CallContext& context_;
  Parts parts_;
  std::uint32_t calls_ = 0;
};

}  // namespace orven
