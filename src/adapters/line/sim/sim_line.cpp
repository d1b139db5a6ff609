// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/line/sim/sim_line.h"

#include <array>
#include <chrono>
#include <utility>

namespace orven {
namespace {

using Kind = LineEvent::Kind;

constexpr std::chrono::milliseconds kBlock{1000 * kBlockSamples / kSampleRate};

}  // namespace

SimLine::SimLine(EventLoop& loop, SimScript script)
    : loop_(loop), script_(std::move(script)), pace_(loop.MakeTimer([this] { MoveAudio(); })) {
  audio_.OnStart([this] {
    if (!pace_->Enabled()) pace_->Start(kBlock);
  });
}

std::optional<OpenFailure> SimLine::Open(LineSink events) {
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
  if (!events_ || (call_ == 0) != (step.kind == SimStep::Kind::Offer)) return;
  switch (step.kind) {
    case SimStep::Kind::Offer:
      call_ = ++calls_;
      rings_ = 0;
      return events_({.kind = Kind::InCommingCall, .call = call_});
    case SimStep::Kind::Ring:
      if (!answered_) events_({.kind = Kind::Ring, .call = call_, .number = ++rings_});
      return;
    case SimStep::Kind::CallerId:
      return events_({.kind = Kind::CallerID, .call = call_, .name = step.name, .text = step.number});
    case SimStep::Kind::Press:
      for (const char digit : step.number)
        if (monitor_digits_) events_({.kind = Kind::MonitorDigit, .call = call_, .digit = digit});
      return;
    case SimStep::Kind::HangUp:
      if (answered_) events_({.kind = Kind::Disconnected, .call = call_});
      return EndCall();
  }
}

void SimLine::EndCall() {
  if (call_ == 0) return;
  answered_ = monitor_digits_ = false;
  events_({.kind = Kind::Idle, .call = std::exchange(call_, 0)});
}

void SimLine::Done(std::int32_t request, std::int32_t result) {
  if (events_) events_({.kind = Kind::Proc, .number = request, .result = result});
}

void SimLine::Answer(CallNumber call, std::int32_t request) {
  if (!IsCurrent(call)) return Done(request, kTelephonyNoCall);
  answered_ = true;
  Done(request, kTelephonyOk);
  events_({.kind = Kind::Connected, .call = call});
}

void SimLine::Drop(CallNumber call, std::int32_t request) {
  Done(request, kTelephonyOk);
  if (IsCurrent(call)) EndCall();
}

void SimLine::MonitorDigits(CallNumber call, bool on) {
  if (IsCurrent(call)) monitor_digits_ = on;
}

void SimLine::MoveAudio() {
  if (!audio_.Plays() && !audio_.Records()) return pace_->Stop();
  if (!answered_) return;
  std::array<std::int16_t, kBlockSamples> block{};
  (void)audio_.Fetch(block);
  block.fill(0);
  audio_.Deliver(block);
}

}  // namespace orven
