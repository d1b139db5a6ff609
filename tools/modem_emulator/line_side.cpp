// SPDX-License-Identifier: GPL-3.0-or-later
// The telephone network and the people on the line.
#include <utility>

#include "modem_emulator/modem_emulator.h"
#include "modem_emulator/voice_streams.h"

namespace orven {
namespace {

using std::chrono::milliseconds;

constexpr milliseconds kBell(2000);         // of one ring
constexpr milliseconds kSecondReport(500);  // into the bell
constexpr milliseconds kDetection(40);      // of a key's tone
constexpr milliseconds kRepeat(70);         // of a key in its bracket
constexpr milliseconds kTripled(30);        // between the reports of one press
constexpr milliseconds kBetweenKeys(100);   // two presses of a person
constexpr milliseconds kLoopBreak(300);     // after the hang-up
constexpr milliseconds kBusyHeard(2000);
constexpr milliseconds kDialHeard(1000);
constexpr milliseconds kCadenceUnit(100);

}  // namespace

ModemEmulator::ModemEmulator(const ModemProfile& profile, const ModemFaults& faults, EventLoop& loop,
                             const Clock& clock, ToHost to_host)
    : profile_(profile),
      faults_(faults),
      loop_(loop),
      clock_(clock),
      port_(loop, clock, std::move(to_host)),
      interpreter_(profile, *this),
      tick_(loop.MakeTimer([this] { Advance(); })) {}

void ModemEmulator::After(Time delay, EventLoop::Task task) {
  loop_.After(delay, lifeline_.Bind(std::move(task)));
}

void ModemEmulator::Ring() {
  if (off_hook_) return;
  if (interpreter_.Register(0) != 0) Complain("S0 is not 0: the modem would answer by itself");
  const auto now = clock_.Uptime();
  const bool cadence = interpreter_.VoiceClass() && interpreter_.Setting("+VDR", 0) == 1;
  if (cadence && rings_until_ > Time(0)) {
    port_.Send(Framed("DROF=" + std::to_string((now - rings_until_) / kCadenceUnit)), Time(0));
  }
  rings_until_ = now + kBell;
  RingReport();
  if (profile_.ring_twice) After(kSecondReport, [this] { RingReport(); });
  if (cadence) {
    After(kBell, [this] {
      if (!off_hook_) port_.Send(Framed("DRON=" + std::to_string(kBell / kCadenceUnit)), Time(0));
    });
  }
}

void ModemEmulator::RingReport() {
  if (off_hook_) return;
  if (interpreter_.VoiceClass() && profile_.ring_event) {
    Event('R');
  } else if (!interpreter_.Quiet()) {
    port_.Send(interpreter_.Verbose() ? Framed("RING") : "2\r", Time(0));
  }
}

void ModemEmulator::CallerIdLine(const std::string& line) {
  if (off_hook_ || !interpreter_.CallerId()) return;
  if (interpreter_.VoiceClass() && profile_.caller_id_in_packet) {
    port_.Send("\x10X" + line + "\r\n\x10.", Time(0));
  } else {
    port_.Send(Framed(line), Time(0));
  }
}

bool ModemEmulator::GoOffHook() {
  if (off_hook_) return true;
  const auto now = clock_.Uptime();
  if (faults_.refuses_off_hook_in_ring && now < rings_until_) return false;
  if (faults_.answer_does_not_take && !std::exchange(missed_one_, true)) return true;
  off_hook_ = true;
  ++call_;
  rings_until_ = Time(0);
  answered_at_ = now;
  passed_ = 0;
  heard_.clear();
  spoken_.clear();
  played_.clear();
  sent_.clear();
  tick_->Start(Time(10));
  News("off-hook");
  return true;
}

void ModemEmulator::GoOnHook() {
  if (!off_hook_) return;
  Advance();
  off_hook_ = false;
  ++call_;
  tick_->Stop();
  playback_.reset();
  receive_.reset();
  tones_.reset();
  caller_.Reset();
  mode_ = Mode::Command;
  News("on-hook");
}

void ModemEmulator::Say(std::vector<std::int16_t> samples) {
  Advance();
  caller_.Say(std::move(samples));
}

void ModemEmulator::Press(char key, Time duration) {
  const auto now = clock_.Uptime();
  const auto start = std::max(now, keys_free_at_);
  keys_free_at_ = start + duration + kBetweenKeys;
  After(start - now, [this, key, duration] {
    if (off_hook_) PressNow(key, duration);
  });
}

void ModemEmulator::PressNow(char key, Time duration) {
  Advance();
  caller_.Press(key, duration);
  const auto report = [this, key](Time delay) {
    After(delay, [this, key, call = call_] {
      if (call == call_) Event(key);
    });
  };
  After(kDetection, [this] { key_reported_at_ = clock_.Uptime(); });
  if (faults_.tripled_keys) {
    for (int i = 0; i < 3; ++i) report(kDetection + i * kTripled);
  } else if (!profile_.brackets_keys) {
    report(kDetection);
  } else {
    EventInCall('/', kDetection);
    for (auto at = kDetection; at < duration; at += kRepeat) report(at);
    if (duration <= kDetection) report(kDetection);
    EventInCall('~', std::max(duration, kDetection) + kDetection);
  }
}

void ModemEmulator::EventInCall(char code, Time delay) {
  After(delay, [this, code, call = call_] {
    if (call == call_) Event(code);
  });
}

void ModemEmulator::HangUp(emulator::NetworkTone tone) {
  if (!off_hook_) return;
  Advance();
  caller_.Tone(tone);
  if (faults_.no_hang_up_code) return;
  if (profile_.hang_up_event != 0) EventInCall(profile_.hang_up_event, kLoopBreak);
  if (tone == emulator::NetworkTone::Busy && profile_.hears_busy) EventInCall('b', kBusyHeard);
  if (tone == emulator::NetworkTone::Dial && profile_.hears_dial) EventInCall('d', kDialHeard);
}

void ModemEmulator::Event(char code) {
  if (!interpreter_.VoiceClass()) return;
  const std::uint8_t bytes[] = {emulator::kDleByte, static_cast<std::uint8_t>(code)};
  port_.Send(bytes, Time(0));
}

void ModemEmulator::Wedge(bool wedged) {
  wedged_ = wedged;
  port_.Mute(wedged);
}

void ModemEmulator::PowerCycle() {
  GoOnHook();
  Wedge(false);
  port_.Clear();
  interpreter_.Reset();
  line_ = {};
  answering_ = dle_ = stopping_ = false;
  rings_until_ = Time(0);
}

}  // namespace orven
