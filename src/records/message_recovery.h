// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <chrono>
#include <functional>
#include <set>
#include <string>
#include <vector>

#include "base/paths.h"
#include "core/activity_log.h"
#include "core/error_trap.h"
#include "platform/clock.h"
#include "platform/files.h"
#include "platform/wave.h"
#include "records/call.h"
#include "records/grown_recordings.h"
#include "records/message_files.h"
#include "records/open_calls.h"

namespace orven {

/// Folder of recordings that the messages folder has no room for, below the application folder.
inline constexpr const char* kRescueFolder = "\\Rescued";

/// Whether a call has a message.
enum class MessageState {
  kThere,
  kNone,
  kLater,  ///< its folder cannot be reached, or there is no room for it yet
};

/// Finds what a crash left of the messages of calls, and brings it to its place in the messages folder. It
/// keeps each place in the open call before it uses it, so that the program may be killed at any time.
/// Failures are logged at the first try. User-interface thread.
///
/// A recording that belongs to no open call becomes a call from an unknown caller at the time at which it
/// began, so that no message is lost.
class MessageRecovery {
 public:
  struct Ports {
    Files& files;
    Clock& clock;
    const WaveControl& Wave1;  ///< measures sound files
    SystemLog& log;
    OpenCalls& open;
    const MessageFolders& folders;
    const ApplicationFolder& home;
    /// Whether a call has the message of this name.
    std::function<bool(const std::string& message)> a_call_has;
  };

  explicit MessageRecovery(Ports ports) : ports_(std::move(ports)) {}

  /// Notes which recordings the earlier runs left.
  void FindStrays();

  /// Looks into the folders of these calls and into those of recordings.
  void Look(const std::vector<const Call*>& calls);

  /// Finds the message of a call that an earlier run did not finish.
  MessageState Find(Call& call);

  /// The calls that were made of recordings without one. Those that may still grow for another program are
  /// left for later.
  std::vector<Call> TakeStrays();
  bool StraysAreLeft() const { return !strays_.empty(); }

  /// Failures of the next tries are in the log already.
  void BeQuiet() { quiet_ = true; }

  ErrorTrap Trap() const { return quiet_ ? ErrorTrap::Silent() : ErrorTrap(ports_.log, "ErrRecoverCall "); }

 private:
  std::set<std::string> Folders() const;
  MessageState TakeGrown(Call& call, const std::vector<GrownRecording>& grown);
  std::string Mended(const std::string& path);
  MessageState TakeStored(Call& call, const std::string& path);
  void DeleteBeginnings(const Call& call);
  bool MoveTo(Call& call, const std::string& from);
  bool LookAtStray(const GrownRecording& stray, std::vector<Call>& calls);
  bool TakeStray(const GrownRecording& stray, double length, std::vector<Call>& calls);
  bool IsInPlace(const std::string& path) const;
  std::string FreePath(const std::string& path) const;

  Ports ports_;
  GrownRecordings grown_;
  std::vector<GrownRecording> strays_;
  std::chrono::milliseconds strays_since_{0};
  bool quiet_ = false;
};

}  // namespace orven
