// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "base/paths.h"
#include "core/activity_log.h"
#include "platform/clock.h"
#include "platform/data_exchange.h"
#include "platform/event_loop.h"
#include "platform/files.h"
#include "platform/registry.h"
#include "platform/shell.h"

namespace orven {

/// What the speech helper reports.
class SpeechLinkListener {
 public:
  virtual ~SpeechLinkListener() = default;

  /// The helper's voices, in its order; may be empty.
  virtual void VoicesArrived(const std::vector<std::string>& descriptions) = 0;

  /// The helper has ended or crashed.
  virtual void HelperLost() = 0;
};

/// The link to the speech helper, a separate program that owns the speech engine. A message is a command of
/// three letters, a colon and the argument. A message that cannot be sent is dropped; the log says why the
/// helper cannot be used. User-interface thread.
class SpeechLink : private DataExchangeEvents {
 public:
  struct Ports {
    EventLoop& loop;
    Registry& registry;
    Shell& shell;
    DataExchange& uDat;
  };

  SpeechLink(Ports ports, SystemLog& log, const ApplicationFolder& home, SpeechLinkListener& listener);
  ~SpeechLink() override;
  SpeechLink(const SpeechLink&) = delete;
  SpeechLink& operator=(const SpeechLink&) = delete;

  /// If a speech engine is installed, starts a helper and asks for its voices. Runs the event loop while it
  /// waits for the helper.
  void Load();

  /// A speech engine is installed and a helper was started.
  bool Available() const { return speechAvailable; }

  /// The link is up; waits for a helper that was just started.
  bool Up();

  /// The voice and rate of the speech.
  struct Manner {
    std::int32_t voice = 0;  ///< index in the helper's list; -1 for none
    std::int32_t rate = 0;   ///< -10 to 10
    bool operator==(const Manner&) const = default;
  };

  /// Speaks `text`; does nothing for an empty one.
  void Speak(const std::string& text, Manner manner);

  /// Stops speaking.
  void Stop();

  /// Requests the speech of `text` as a file at `path`, which appears when it is complete. False when the
  /// request could not be sent.
  bool MakeFile(const std::string& path, const std::string& text, Manner manner);

  /// Ends the helper, which completes a requested file first.
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
  const ApplicationFolder& home_;
  SpeechLinkListener& listener_;
  bool speechAvailable = false;
  bool unloaded_ = false;
  bool voices_arrived_ = false;
  Manner manner_;  ///< that the helper uses
  Lifeline lifeline_;
};

/// A take that the speech helper makes from a text. The helper does not report completion: the take is
/// complete when its file exists. User-interface thread.
class SpeechTake {
 public:
  struct Parts {
    EventLoop& loop;
    const Clock& clock;
    Files& files;
    SystemLog& log;
    const ApplicationFolder& home;
    SpeechLink& link;
  };

  /// `there` is false when the take has failed, which is logged.
  using Done = std::function<void(bool there)>;

  explicit SpeechTake(Parts parts);

  /// Starts a take; the link must be up. `done` is called once, later, unless Make or Forget is called
  /// before. False when it could not be started.
  bool Make(const std::string& text, SpeechLink::Manner manner, Done done);

  /// A take was started and has neither completed nor failed.
  bool Pending() const { return TimerSpeech->Enabled(); }

  /// The file is still the one that completed the take.
  bool Unchanged() const;

  /// Stops waiting for the take.
  void Forget() { TimerSpeech->Stop(); }

  /// The helper has ended: a take that is not complete has failed.
  void GiveUp();

  std::string Path() const { return parts_.home.Path("\\ttstmp.wav"); }

 private:
  void Look();
  void End(bool there);

  Parts parts_;
  std::unique_ptr<Timer> TimerSpeech;
  Done done_;
  std::chrono::milliseconds deadline_{0};  ///< uptime
  Clock::WallTime written_;                ///< when the file was last modified
};

}  // namespace orven
