// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <chrono>
#include <cstdint>
#include <memory>
#include <string>

#include "greetings/microphone_take.h"
#include "platform/clock.h"
#include "platform/event_loop.h"
#include "platform/files.h"
#include "records/message_files.h"
#include "telephony/call_control.h"

namespace orven {

/// Records the caller's message: waits a moment after the beep, records, and ends on silence, on the
/// longest length, or when the call ends. Silence is counted in ticks of 10 ms, each with the level of its
/// own moment, ten of them in one wake-up; options that are changed meanwhile count from the next one.
/// User-interface thread.
class Recorder {
 public:
  struct Ports {
    Clock& clock;
    EventLoop& loop;
    Files& files;
    const MessageFolders& folders;
    MicrophoneTake& microphone;  ///< uses the same recorder while no call needs it
  };

  Recorder(Ports ports, CallControl& control);

  /// A message is being recorded.
  bool Recording() const { return control_.Wave1.IsRecording() && !ports_.microphone.Recording(); }

  /// A call was answered: the line takes over the recorder.
  void MakeReady() { ports_.microphone.MakeWay(); }

  /// Starts recording the message of the current call; hangs up instead when recording is off or the
  /// caller is the owner. Returns at once: the recording starts after the wait, if the same call is
  /// still connected then.
  void RecMessage();

  /// Ends the recording and stores it in the messages folder under the call's message file name. If that file
  /// exists already (two calls within one second), the message gets another name.
  void StopRecMessage();

  /// Stops both timers: no message is recorded.
  void StopTimers();

  /// The call is over: ends a recording that still runs and both timers.
  void EndOfCall();

  bool TimersRunning() const { return tmrSilence->Enabled() || TimerRecord->Enabled(); }

 private:
  void StartAfterWait();
  bool StartPcm();
  void StartMuLaw();
  void StartPreScreen(const WaveFormat& format);
  std::string FormatLine(const std::string& step, const WaveFormat& format, std::int32_t result) const;
  std::int32_t Store(std::string& path);
  void WaitForTicks();
  void CountTicks();
  bool SilenceTick(std::chrono::milliseconds ago);
  void RecordTick();
  std::int32_t WaveIn() const;

  Ports ports_;
  CallControl& control_;
  std::unique_ptr<Timer> tmrSilence;
  std::int32_t ticks_ = 0;  ///< how many ticks the running tmrSilence counts each time
  std::unique_ptr<Timer> TimerRecord;
  Lifeline lifeline_;
};

}  // namespace orven
