// SPDX-License-Identifier: GPL-3.0-or-later
#include "telephony/greeter.h"

#include "core/error_trap.h"

namespace orven {

std::int32_t Greeter::PlayOnLine(const std::string& path) {
  return context_.Wave1.PlayFile(path, context_.Tapi1.GetWaveDeviceId(context_.Line()));
}

void Greeter::PlayGreeting() {
  const ErrorTrap trap(context_.log, "ErrTapiConnected ");
  context_.call.greeting_playing = true;
  trap([&] { context_.progress.Enter(CallState::Greeting); });
  trap([&] { context_.Tapi1.SetGreetingPhase(context_.Line(), true); });
  std::int32_t result = kWaveNoDevice;
  trap([&] {
    result = PlayOnLine(context_.shared.InApplicationFolder("\\Greets\\") + context_.shared.greeting_file);
  });
  if (result == kWaveOk) return;
  context_.log.WriteSystem("Play Greeting " + context_.Wave1.PlayErrorText(result));
  PlayFinished();
}

void Greeter::PlayFinished() {
  const ErrorTrap trap(context_.log, "ErrLineWaveDonePlay ");
  auto& call = context_.call;
  trap([&] {
    if (!context_.Connected()) {
      control_.DropCall();
    } else if (call.greeting_playing && !call.admin_mode) {
      PlayBeep();
    } else if (call.beep_playing && !call.admin_mode) {
      call.beep_playing = false;
      recorder_.RecMessage();
    } else if (call.remote_playback) {
      remote_.PlayForAdmin();
    }
  });
}

void Greeter::PlayBeep() {
  const ErrorTrap trap(context_.log, "ErrLineWaveDonePlay ");
  trap([&] { context_.Tapi1.SetGreetingPhase(context_.Line(), false); });
  context_.call.greeting_playing = false;
  trap([&] { context_.progress.Enter(CallState::Beep); });
  std::int32_t result = kWaveNoDevice;
  trap([&] {
    result = PlayOnLine(context_.shared.InApplicationFolder("\\beep.wav"));
    context_.log.WriteSystem("Play Beep " + context_.Wave1.PlayErrorText(result));
  });
  context_.call.beep_playing = true;
  if (result != kWaveOk) PlayFinished();
}

}  // namespace orven
