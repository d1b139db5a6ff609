// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/line/sim/sim_line.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <utility>

#include "platform/wave.h"

namespace orven {
namespace {

using Kind = LineEvent::Kind;

constexpr std::chrono::milliseconds kBlock{1000 * kBlockSamples / kSampleRate};

/// One hour: a line that runs for days must not exhaust the memory.
constexpr std::size_t kMostHeard = std::size_t{3600} * kSampleRate;

}  // namespace

SimAudio::SimAudio(EventLoop& loop) : pace_(loop.MakeTimer([this] { Move(); })) {}

void SimAudio::Say(const std::vector<std::int16_t>& samples) {
  said_.insert(said_.end(), samples.begin(), samples.end());
}

std::int32_t SimAudio::StartPlay(AudioSource& source) {
  if (source_ != nullptr) return kWaveBusy;
  source_ = &source;
  if (!pace_->Enabled()) pace_->Start(kBlock);
  return kWaveOk;
}

void SimAudio::StopPlay() {
  source_ = nullptr;
}

std::int32_t SimAudio::StartRecord(AudioSink& sink) {
  if (sink_ != nullptr) return kWaveBusy;
  sink_ = &sink;
  if (!pace_->Enabled()) pace_->Start(kBlock);
  return kWaveOk;
}

void SimAudio::StopRecord() {
  sink_ = nullptr;
}

void SimAudio::Move() {
  if (source_ == nullptr && sink_ == nullptr) {
    pace_->Stop();
    return;
  }
  if (!up_) return;
  std::array<std::int16_t, kBlockSamples> block{};
  if (source_ != nullptr && !source_->Read(block)) source_ = nullptr;
  if (source_ != nullptr && heard_.size() < kMostHeard)
    heard_.insert(heard_.end(), block.begin(), block.end());
  if (sink_ == nullptr) return;
  block.fill(0);
  const auto count = std::min(said_.size(), block.size());
  std::copy_n(said_.begin(), count, block.begin());
  said_.erase(said_.begin(), said_.begin() + static_cast<std::ptrdiff_t>(count));
  sink_->Write(block);
}

SimLine::SimLine(EventLoop& loop, SimScript script) : loop_(loop), script_(std::move(script)), audio_(loop) {}

std::optional<OpenFailure> SimLine::Open(LineSink events) {
  if (failure_) return failure_;
  events_ = std::move(events);
  for (const auto& step : script_) {
    loop_.After(step.at, lifeline_.Bind([this, step, opening = openings_] {
      if (opening == openings_) Do(step);
    }));
  }
  return std::nullopt;
}

void SimLine::Close() {
  EndCall();
  events_ = nullptr;
  ++openings_;
}

void SimLine::Do(const SimStep& step) {
  switch (step.kind) {
    case SimStep::Kind::Offer: Offer(); break;
    case SimStep::Kind::Ring: Ring(); break;
    case SimStep::Kind::CallerId: CallerId(step.name, step.number); break;
    case SimStep::Kind::Press:
      for (const char digit : step.number) Press(digit);
      break;
    case SimStep::Kind::HangUp: HangUp(); break;
  }
}

void SimLine::Offer() {
  if (!events_ || call_ != 0) return;
  call_ = ++calls_;
  rings_ = 0;
  events_({.kind = Kind::InCommingCall, .call = call_});
}

void SimLine::Ring() {
  if (call_ != 0 && !answered_) events_({.kind = Kind::Ring, .call = call_, .number = ++rings_});
}

void SimLine::CallerId(const std::string& name, const std::string& number) {
  if (call_ != 0) events_({.kind = Kind::CallerID, .call = call_, .name = name, .text = number});
}

void SimLine::Press(char digit) {
  if (connected_ && monitor_digits_) events_({.kind = Kind::MonitorDigit, .call = call_, .digit = digit});
}

void SimLine::HangUp() {
  if (call_ == 0) return;
  if (answered_ && !dropping_) events_({.kind = Kind::Disconnected, .call = call_});
  EndCall();
}

void SimLine::EndCall() {
  if (call_ == 0) return;
  audio_.SetCall(false);
  answered_ = false;
  connected_ = false;
  dropping_ = false;
  monitor_digits_ = false;
  const auto call = std::exchange(call_, 0);
  events_({.kind = Kind::Idle, .call = call});
}

void SimLine::Answer(CallNumber call, std::int32_t request) {
  loop_.After(answer_delay_, lifeline_.Bind([this, call, request] { CompleteAnswer(call, request); }));
}

void SimLine::CompleteAnswer(CallNumber call, std::int32_t request) {
  if (!events_) return;
  if (!IsCurrent(call)) {
    events_({.kind = Kind::Proc, .number = request, .result = kTelephonyNoCall});
    return;
  }
  if (failing_answers_ > 0) {
    --failing_answers_;
    events_({.kind = Kind::Proc, .number = request, .result = kTelephonyDeviceFailed});
    return;
  }
  answered_ = true;
  events_({.kind = Kind::Proc, .number = request});
  if (connect_delay_.count() == 0) return Connect(call);
  loop_.After(connect_delay_, lifeline_.Bind([this, call] { Connect(call); }));
}

void SimLine::Connect(CallNumber call) {
  if (!IsCurrent(call)) return;
  connected_ = true;
  audio_.SetCall(true);
  events_({.kind = Kind::Connected, .call = call});
}

void SimLine::Drop(CallNumber call, std::int32_t request) {
  if (IsCurrent(call)) dropping_ = true;
  loop_.After(answer_delay_, lifeline_.Bind([this, call, request] { CompleteDrop(call, request); }));
}

void SimLine::CompleteDrop(CallNumber call, std::int32_t request) {
  if (!events_) return;
  events_({.kind = Kind::Proc, .number = request});
  if (IsCurrent(call)) EndCall();
}

void SimLine::MonitorDigits(CallNumber call, bool on) {
  if (IsCurrent(call)) monitor_digits_ = on;
}

}  // namespace orven
