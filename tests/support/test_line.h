// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <chrono>
#include <optional>
#include <string>
#include <utility>

#include "adapters/line/sim/sim_line.h"

namespace orven::test {

/// A simulated line with a caller that a test plays, and with a network that takes its time and can fail.
class TestLine : public LineDriver {
 public:
  explicit TestLine(EventLoop& loop, SimScript script = {}) : loop_(loop), sim_(loop, std::move(script)) {}

  // The caller.
  void Offer() { sim_.Do({.kind = SimStep::Kind::Offer}); }
  void Ring() { sim_.Do({.kind = SimStep::Kind::Ring}); }
  void CallerId(const std::string& name, const std::string& number) {
    sim_.Do({.kind = SimStep::Kind::CallerId, .name = name, .number = number});
  }
  void Divert(const std::string& from, const std::string& reason) {
    events_({.kind = LineEvent::Kind::Diverted, .call = call_, .name = from, .text = reason});
  }
  void Press(char digit) { sim_.Do({.kind = SimStep::Kind::Press, .number = {digit}}); }
  void HangUp() { sim_.Do({.kind = SimStep::Kind::HangUp}); }

  // The network.
  std::chrono::milliseconds answer_delay{20};  ///< how long answering and hanging up take
  /// How long after the answer the call is connected; the caller may hang up in between.
  std::chrono::milliseconds connect_delay{0};
  int failing_answers = 0;             ///< number of the next answers that fail
  std::optional<OpenFailure> failure;  ///< of the next openings
  int openings = 0;
  void Trouble(const Words& trouble) { events_({.kind = LineEvent::Kind::Trouble, .trouble = trouble}); }

  bool HasCall() const { return call_ != 0; }
  bool IsAnswered() const { return connected_; }

  std::optional<OpenFailure> Open(LineSink events) override {
    ++openings;
    if (failure) return failure;
    events_ = std::move(events);
    return sim_.Open([this](const LineEvent& event) { Take(event); });
  }
  void Close() override { sim_.Close(); }
  void Answer(CallNumber call, std::int32_t request) override {
    loop_.After(answer_delay, lifeline_.Bind([this, call, request] {
      if (call != call_ || failing_answers == 0) return sim_.Answer(call, request);
      --failing_answers;
      events_({.kind = LineEvent::Kind::Proc, .number = request, .result = kTelephonyDeviceFailed});
    }));
  }
  void Drop(CallNumber call, std::int32_t request) override {
    loop_.After(answer_delay, lifeline_.Bind([this, call, request] { sim_.Drop(call, request); }));
  }
  void MonitorDigits(CallNumber call, bool on) override { sim_.MonitorDigits(call, on); }
  AudioDevice& Audio() override { return sim_.Audio(); }

 private:
  void Take(const LineEvent& event) {
    if (event.kind == LineEvent::Kind::InCommingCall) call_ = event.call;
    if (event.kind == LineEvent::Kind::Idle) call_ = 0, connected_ = false;
    if (event.kind != LineEvent::Kind::Connected) return events_(event);
    if (connect_delay.count() == 0) return Connect(event);
    loop_.After(connect_delay, lifeline_.Bind([this, event] { Connect(event); }));
  }
  void Connect(const LineEvent& event) {
    if (event.call != call_) return;
    connected_ = true;
    events_(event);
  }

  EventLoop& loop_;
  SimLine sim_;
  LineSink events_;
  CallNumber call_ = 0;
  bool connected_ = false;
  Lifeline lifeline_;
};

}  // namespace orven::test
