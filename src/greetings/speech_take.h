// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <string>

#include "core/activity_log.h"
#include "core/settings.h"
#include "greetings/speech_link.h"
#include "platform/clock.h"
#include "platform/event_loop.h"
#include "platform/files.h"

namespace orven {

/// A take that the speech helper makes from a text. The helper does not say when it is done: the take is
/// there when its file is. User-interface thread.
class SpeechTake {
 public:
  struct Parts {
    EventLoop& loop;
    const Clock& clock;
    Files& files;
    SystemLog& log;
    const SharedOptions& shared;
    SpeechLink& link;
  };

  /// Takes whether the take is there, or was given up, which is logged.
  using Done = std::function<void(bool there)>;

  explicit SpeechTake(Parts parts);

  /// Begins to make the take. `done` is called later, once, unless another Make or Forget comes before
  /// that. False when it could not be begun. The link must be up.
  bool Make(const std::string& text, SpeechLink::Manner manner, Done done);

  /// A take was begun, and is neither there nor given up.
  bool Pending() const { return TimerSpeech->Enabled(); }

  /// The take that is there is the one that was there when it was done.
  bool Unchanged() const;

  /// Nobody waits for the take any more.
  void Forget() { TimerSpeech->Stop(); }

  /// The helper is gone: a take that is not there by now never will be.
  void GiveUp();

  std::string Path() const { return parts_.shared.InApplicationFolder("\\ttstmp.wav"); }

 private:
  void Look();
  void End(bool there);

  Parts parts_;
  std::unique_ptr<Timer> TimerSpeech;
  Done done_;
  std::chrono::milliseconds deadline_{0};  ///< uptime
  Clock::WallTime written_;                ///< the take that is there
};

}  // namespace orven
