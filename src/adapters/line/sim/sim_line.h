// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <deque>
#include <memory>
#include <string>
#include <vector>

#include "adapters/line/sim/sim_script.h"
#include "platform/audio_device.h"
#include "platform/event_loop.h"
#include "platform/line_driver.h"

namespace orven {

/// The audio of a simulated call. It keeps everything that is played, as heard by the caller; recordings get
/// what the caller says, then silence. During a call it moves a block every 20 ms of the loop's time while
/// something is played or recorded.
class SimAudio : public AudioDevice {
 public:
  explicit SimAudio(EventLoop& loop);

  /// Whether a call is connected.
  void SetCall(bool up) { up_ = up; }

  /// The caller says `samples` after everything said before.
  void Say(const std::vector<std::int16_t>& samples);

  /// What the caller has heard so far, without the pauses between.
  const std::vector<std::int16_t>& Heard() const { return heard_; }

  std::int32_t StartPlay(AudioSource& source) override;
  void StopPlay() override;
  std::int32_t StartRecord(AudioSink& sink) override;
  void StopRecord() override;

 private:
  void Move();

  bool up_ = false;
  AudioSource* source_ = nullptr;
  AudioSink* sink_ = nullptr;
  std::deque<std::int16_t> said_;
  std::vector<std::int16_t> heard_;
  std::unique_ptr<Timer> pace_;
};

/// A simulated telephone line. The calls come from its methods, or from a script that starts when the line is
/// opened. It runs on its event loop's time. User-interface thread.
class SimLine : public LineDriver {
 public:
  explicit SimLine(EventLoop& loop, SimScript script = {});

  /// The caller's side. A step that is impossible now (hanging up without a call, a second call) does
  /// nothing, as on a real line.
  void Offer();
  void Ring();
  void CallerId(const std::string& name, const std::string& number);
  void Press(char digit);
  void HangUp();

  /// The network's side: how long answering and hanging up take, and how many of the next answers fail.
  void SetAnswerDelay(std::chrono::milliseconds delay) { answer_delay_ = delay; }
  /// How long after the answer the call is connected; the caller may hang up in between.
  void SetConnectDelay(std::chrono::milliseconds delay) { connect_delay_ = delay; }
  void FailAnswers(int count) { failing_answers_ = count; }
  void FailOpen(std::optional<OpenFailure> failure) { failure_ = std::move(failure); }

  bool HasCall() const { return call_ != 0; }
  bool IsAnswered() const { return connected_; }
  SimAudio& Sound() { return audio_; }

  std::optional<OpenFailure> Open(LineSink events) override;
  void Close() override;
  void Answer(CallNumber call, std::int32_t request) override;
  void Drop(CallNumber call, std::int32_t request) override;
  void MonitorDigits(CallNumber call, bool on) override;
  AudioDevice& Audio() override { return audio_; }

 private:
  void Do(const SimStep& step);
  void CompleteAnswer(CallNumber call, std::int32_t request);
  void Connect(CallNumber call);
  void CompleteDrop(CallNumber call, std::int32_t request);
  void EndCall();
  bool IsCurrent(CallNumber call) const { return call_ != 0 && call_ == call; }

  EventLoop& loop_;
  SimScript script_;
  SimAudio audio_;
  LineSink events_;      ///< empty while the line is closed
  CallNumber call_ = 0;  ///< 0: no call
  std::uint32_t calls_ = 0;
  std::int32_t rings_ = 0;
  bool answered_ = false;
  bool connected_ = false;
  bool dropping_ = false;  ///< our side has asked to hang up
  int openings_ = 0;       ///< stops the scripts of earlier openings
  bool monitor_digits_ = false;
  std::chrono::milliseconds answer_delay_{20};
  std::chrono::milliseconds connect_delay_{0};
  int failing_answers_ = 0;
  std::optional<OpenFailure> failure_;
  Lifeline lifeline_;
};

}  // namespace orven
