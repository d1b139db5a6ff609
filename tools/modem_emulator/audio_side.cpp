// SPDX-License-Identifier: GPL-3.0-or-later
// Audio between the host and the line: as many samples as time has passed.
#include "modem_emulator/modem_emulator.h"

namespace orven {
namespace {

constexpr int kSamplesPerMillisecond = emulator::kLineRate / 1000;
constexpr std::chrono::milliseconds kInactivityUnit(1000);
constexpr int kSilenceUnit = emulator::kLineRate / 10;  // a tenth of a second
constexpr int kShortestTail = 10;                       // ms of audio after the stop
constexpr int kLongestTail = 60;

}  // namespace

void ModemEmulator::StartTransmit() {
  Advance();
  const auto& format = interpreter_.Format();
  playback_.emplace(format.coding, interpreter_.Rate(), profile_.buffer, played_);
  mode_ = Mode::Transmit;
  News("playing");
}

void ModemEmulator::StartReceive() {
  Advance();
  const auto& format = interpreter_.Format();
  receive_.emplace(format.coding, interpreter_.Rate(), profile_.shields_pairs, port_, sent_);
  const bool reports = !faults_.ignores_silence_detection && interpreter_.Setting("+VSD", 0) != 0;
  silence_ = emulator::SilenceWatch(reports ? interpreter_.Setting("+VSD", 1) * kSilenceUnit : 0);
  stops_ = 0;
  stopping_ = false;
  mode_ = Mode::Receive;
  News("receiving");
}

void ModemEmulator::StopAsked() {
  if (++stops_ < faults_.stops_needed || stopping_) return;
  stopping_ = true;
  After(Time(port_.Any(kShortestTail, kLongestTail)), [this, call = call_] {
    if (call == call_) EndReceive();
  });
}

void ModemEmulator::EndReceive() {
  Advance();
  receive_->Flush();
  receive_.reset();
  port_.Send("\x10\x03", Time(0));
  EndOfAudio(profile_.received);
}

void ModemEmulator::PlayTones(std::vector<emulator::ToneStep> steps) {
  tones_.emplace(std::move(steps));
}

void ModemEmulator::Advance() {
  if (!off_hook_) return;
  const auto due = (clock_.Uptime() - answered_at_).count() * kSamplesPerMillisecond;
  const auto samples = static_cast<std::size_t>(due - passed_);
  passed_ = due;
  if (samples > 0) Pass(samples);
  WatchInactivity();
}

void ModemEmulator::Pass(std::size_t samples) {
  std::vector<std::int16_t> out(samples);
  std::vector<std::int16_t> in(samples);
  const bool dry = playback_ && playback_->Take(out);
  if (tones_) tones_->Add(out);
  heard_.insert(heard_.end(), out.begin(), out.end());
  caller_.Take(in);
  spoken_.insert(spoken_.end(), in.begin(), in.end());
  if (receive_) {
    receive_->Put(in);
    if (const auto report = silence_.Put(in)) Event(*report);
  }
  if (dry) {
    Complain("the audio did not come in time: an underrun");
    Event('u');
  }
  if (playback_ && playback_->Over()) {
    playback_.reset();
    EndOfAudio("OK");
  }
  if (tones_ && tones_->Over()) {
    tones_.reset();
    Answer(ResultText(emulator::Result::Ok));
  }
}

void ModemEmulator::WatchInactivity() {
  const auto limit = interpreter_.Setting("+VIT", 0) * kInactivityUnit;
  const bool idle = mode_ == Mode::Command && !answering_ && interpreter_.VoiceClass();
  if (!idle || limit == Time(0) || clock_.Uptime() - active_at_ < limit) return;
  Complain("nothing came for as long as +VIT allows: the modem hangs up");
  active_at_ = clock_.Uptime();
  GoOnHook();
}

}  // namespace orven
