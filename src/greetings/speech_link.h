// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "core/activity_log.h"
#include "core/settings.h"
#include "platform/clock.h"
#include "platform/data_exchange.h"
#include "platform/event_loop.h"
#include "platform/files.h"
#include "platform/registry.h"
#include "platform/shell.h"

namespace orven {

/// Who makes use of the speech helper.
class SpeechLinkListener {
 public:
  virtual ~SpeechLinkListener() = default;

  /// The helper's voices, in its order; there may be none.
  virtual void VoicesArrived(const std::vector<std::string>& descriptions) = 0;

  /// The helper is gone.
  virtual void HelperLost() = 0;
};

/// The speech helper, a program of its own that owns the speech engine, and the messages to it. Each
/// starts with a command of three letters and a colon; the rest is its argument. What cannot be sent is
/// skipped; why the helper cannot be used is logged. User-interface thread.
class SpeechLink : private DataExchangeEvents {
 public:
  struct Ports {
    EventLoop& loop;
    Registry& registry;
    Shell& shell;
    DataExchange& uDat;
  };

  SpeechLink(Ports ports, SystemLog& log, const SharedOptions& shared, SpeechLinkListener& listener);
  ~SpeechLink() override;
  SpeechLink(const SpeechLink&) = delete;
  SpeechLink& operator=(const SpeechLink&) = delete;

  /// Starts a helper where a speech engine is installed, and asks for its voices. Waits for the helper and
  /// runs the event loop meanwhile.
  void Load();

  /// A speech engine is installed and a helper was started.
  bool Available() const { return speechAvailable; }

  /// The link is up; waits while a helper that was just started has not come yet.
  bool Up();

  /// How to speak.
  struct Manner {
    std::int32_t voice = 0;  ///< index in the helper's list; -1 for none
    std::int32_t rate = 0;   ///< -10 to 10
    bool operator==(const Manner&) const = default;
  };

  /// Speaks `text`. Nothing for no text.
  void Speak(const std::string& text, Manner manner);

  /// Ends what is being spoken.
  void Stop();

  /// Has `text` spoken into the file at `path`, which appears, whole, when it is done. False when nothing
  /// was asked for.
  bool MakeFile(const std::string& path, const std::string& text, Manner manner);

  /// Ends the helper; a file that it is making is finished first.
  void Unload();

 private:
  void DataArrival(const std::string& text) override;
  void LinkLost() override;
  bool Installed();
  bool StartHelper();
  void ReportNoAnswer();
  void ExpectVoices();
  void Tell(Manner manner);

  Ports ports_;
  SystemLog& log_;
  const SharedOptions& shared_;
  SpeechLinkListener& listener_;
  bool speechAvailable = false;
  bool unloaded_ = false;
  bool voices_arrived_ = false;
  Manner manner_;  ///< that the helper was told, or begins with
  Lifeline lifeline_;
};

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
