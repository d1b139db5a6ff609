// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <memory>

#include "adapters/line/driver/line_audio.h"
#include "adapters/line/sim/sim_script.h"
#include "platform/event_loop.h"
#include "platform/line_driver.h"

namespace orven {

/// A telephone line without a telephone. Its calls come from a script that starts when the line is opened, or
/// from Do. The caller is silent and hears nothing. It runs on its event loop's time, and shows what every
/// kind of line has to do. User-interface thread.
class SimLine : public LineDriver {
 public:
  explicit SimLine(EventLoop& loop, SimScript script = {});

  /// The caller's side. A step that is impossible now (hanging up without a call, a second call) does
  /// nothing, as on a real line.
  void Do(const SimStep& step);

  std::optional<OpenFailure> Open(LineSink events) override;
  void Close() override;
  void Answer(CallNumber call, std::int32_t request) override;
  void Drop(CallNumber call, std::int32_t request) override;
  void MonitorDigits(CallNumber call, bool on) override;
  AudioDevice& Audio() override { return audio_; }

 private:
  bool IsCurrent(CallNumber call) const { return call_ != 0 && call_ == call; }
  void Done(std::int32_t request, std::int32_t result);
  void EndCall();
  void MoveAudio();

  EventLoop& loop_;
  const SimScript script_;
  LineSink events_;       ///< empty while the line is closed
  int openings_ = 0;      ///< stops the scripts of earlier openings
  CallNumber calls_ = 0;  ///< offered so far
  CallNumber call_ = 0;   ///< 0: no call
  std::int32_t rings_ = 0;
  bool answered_ = false;
  bool monitor_digits_ = false;
  LineAudio audio_;
  std::unique_ptr<Timer> pace_;  ///< runs while something is played or recorded
  Lifeline lifeline_;
};

}  // namespace orven
